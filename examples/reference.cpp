#include <iostream>

#include "ZmConfig.h"
#include "ZmExpression.h"

// Takes the variables of an expression from the options of a section.
class Options : public ZmReference {
 public:
  explicit Options(const ZmConfig& section) : section_(section) {}

  // Asked for every leaf, so what is no option has to be given back as it is.
  void value(const ZmString& name, ZmString& out) override {
    out = variable(name) ? section_.option(name) : name;
  }
  unsigned char valid(const ZmString& name) override { return variable(name) || name.isfloat(); }
  unsigned char variable(const ZmString& name) override { return section_.exists(name); }

 private:
  const ZmConfig& section_;
};

int main(int argc, char** argv) {
  ZmConfig section;
  section.option("cores", "16");
  section.option("load", "12.5");

  ZmExpression expression;
  expression.reference(new Options(section));  // the last node of the tree destroys it
  if (!expression.parse(argc > 1 ? argv[1] : "load < cores - 2 or cores > 32", 0)) {
    std::cerr << "not an expression\n";
    return 1;
  }
  ZmStringList names;
  expression.variables(names);
  std::cout << "uses: " << names.join(" ") << "\n";
  if (!expression.isvalid()) {
    std::cerr << "a name is no option\n";
    return 1;
  }

  ZmScalar result;
  expression.eval(result);
  std::cout << "gives: " << result.stringvalue() << "\n";
  return 0;
}
