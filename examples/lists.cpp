#include <iostream>
#include <memory>

#include "ZmStringHash.h"
#include "ZmStringList.h"

int main() {
  ZmStringList hosts;
  hosts.push(new ZmString("node2"));  // the list owns it now
  hosts.push(new ZmString("node1"));
  hosts.push(new ZmString("gpu1"));
  hosts.sort();
  std::cout << hosts.join(" ") << "\n";
  std::cout << *hosts.get(0) << "\n";                      // lent: the list will destroy it
  const std::unique_ptr<ZmString> first(hosts.remove(0));  // handed back: ours to destroy
  std::cout << *first << ", " << hosts.length() << " left\n";
  std::cout << (hosts.get(99) == nullptr ? "no such position\n" : "");

  ZmStringHash racks;  // owns its values and the copies of the keys
  for (int i = 0; i < hosts.length(); ++i) racks.set(new ZmString("rack A"), *hosts.get(i));
  racks.set(new ZmString("rack B"), ZmString("node2"));  // destroys the earlier value
  const ZmStringHash copy(racks);                        // deep

  ZmStringList names;
  racks.keys(names);  // lends the hash's own keys
  names.sort();
  for (int i = 0; i < names.length(); ++i)
    std::cout << *names.get(i) << ": " << *racks.get(*names.get(i)) << "\n";
  names.release();  // so they must not be destroyed with the list

  racks.clear();
  std::cout << *copy.get(ZmString("node2")) << "\n";
}
