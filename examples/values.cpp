#include <iostream>

#include "ZmScalar.h"
#include "ZmString.h"

int main() {
  ZmString name;                                                // undefined: without a buffer
  std::cout << int{name.isundef()} << int{name == ""} << "\n";  // it reads as the empty text

  name = "node";
  name += 7;  // numbers are appended as text
  std::cout << name << " has " << name.length() << " bytes\n";
  std::cout << name.toupper() << " " << name.substr(0, 4) << " " << name << "\n";  // new strings
  std::cout << ZmString("12 cores").integervalue() << " " << ZmString("cores").integervalue()
            << "\n";  // what is no number reads as 0

  ZmString password("opensesame");
  password.secure(1);  // every buffer it gives up is overwritten with zeros first
  const ZmString copy(password);
  std::cout << int{copy.secure()} << "\n";

  ZmScalar a(ZmString("3")), b(ZmString("0.5")), sum;  // an integer, and a float
  ZmScalar::eval("+", a, b, sum);                      // the wider kind wins
  std::cout << sum.stringvalue() << "\n";
}
