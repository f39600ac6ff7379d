#include <iostream>

#include "ZmPack.h"
#include "ZmStringList.h"

// One render job. Tags and names belong to the format: a new member takes new ones.
class Job : public ZmPack {
 public:
  int type() const override { return 1000; }  // names the class inside other packs
  ZmString typeXML() const override { return "job"; }

  void encode() override {
    store(1, scene);
    store(2, priority);
    store(3, frames);
  }
  void decode() override {  // runs once for each field; only the call that fits takes effect
    restore(1, scene);
    restore(2, priority);
    restore(3, frames);
  }
  void encodeXML() override {
    storeXML("scene", scene);
    storeXML("priority", priority);
    storeXML("frames", frames);
  }
  void decodeXML() override {
    restoreXML("scene", scene);
    restoreXML("priority", priority);
    restoreXML("frames", frames);
  }

  ZmString scene;
  int priority = 0;
  ZmStringList frames;
};

int main() {
  Job job;
  job.scene = "harbour <night>";
  job.priority = 5;
  job.frames.push(new ZmString("1-40"));
  job.frames.push(new ZmString("90-99"));

  job.pack();  // the record is in the job's own buffer
  Job received;
  const int result = received.unpack(job.packContents(), job.packSize());
  std::cout << result << " " << received.scene << ", " << received.frames.join(" ") << "\n";
  std::cout << "cut off: " << Job().unpack(job.packContents(), 3) << "\n";

  received.priority = 9;
  received.packXML();
  const ZmString xml(received.packContents(), received.packSize());
  std::cout << xml;
  Job read;
  std::cout << read.unpackXML(xml) << " " << read.priority << "\n";
}
