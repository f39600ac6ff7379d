#ifndef ZM_EXPRESSION_H
#define ZM_EXPRESSION_H

#include "ZmExpressionCache.h"
#include "ZmPack.h"
#include "ZmReference.h"
#include "ZmScalar.h"
#include "ZmString.h"
#include "ZmStringHash.h"
#include "ZmStringList.h"

class ZmTokens;

/// A parsed expression: a binary tree whose nodes are expressions themselves.
///
/// A node with a name is a leaf, whose name is its token; any other is an inner node that applies
/// its operator to its children. In a binary node a is the left operand and b the right one. The
/// infix parser keeps the operand of a unary node ("not", "!", "--") in b; the others keep it in a,
/// and such a node evaluates to nothing. A quoted empty token makes a node without name or
/// operator, which acts as an inner node without children.
///
/// A node owns its children. The values of leaves come from the leaf's own value, else from a
/// shared ZmReference, else from a callback, else they are the names themselves; every node carries
/// its callbacks and its hold on the reference. Expressions are never serialised. However deep a
/// tree is, no operation needs more than constant stack. One thread at a time, for evaluation too:
/// a leaf remembers what its text is as a number.
class ZM_EXPORT ZmExpression : public ZmPack {
 public:
  /// Supplies the value of a variable in `out`, which comes fresh and empty; a text left alone
  /// reads as the empty string.
  using ValueRequest = void (*)(const ZmString& name, ZmString& out);
  /// Says whether a variable has a value.
  using ValidRequest = unsigned char (*)(const ZmString& name);

  ZmExpression() = default;                 ///< Empty strings, no children, no source of values.
  ZmExpression(const ZmExpression& other);  ///< copy(other).
  ZmExpression& operator=(const ZmExpression& other);  ///< copy(other).
  ~ZmExpression() override;                 ///< Slot 0. Destroys the tree; see reference().
  int type() const override { return 65; }  ///< Slot 1. The type code.
  void encode() override {}                 ///< Slot 2. Nothing, deliberately.
  void decode() override {}                 ///< Slot 3. Nothing, deliberately.
  ZmString typeXML() const override { return "expression"; }  ///< Slot 4. The XML element name.
  void encodeXML() override {}                                ///< Slot 5. Nothing, deliberately.
  void decodeXML() override {}                                ///< Slot 6. Nothing, deliberately.

  /// Makes a deep copy of the other tree, which may be a part of this one, and then destroys what
  /// this node held. Callbacks are shared; so are references, each counted once more per node.
  void copy(const ZmExpression& other);

  /// @name Fields
  /// @{
  const ZmString& op() const { return op_; }        ///< The operator of an inner node.
  const ZmString& value() const { return value_; }  ///< The literal value of a leaf.
  const ZmString& name() const { return name_; }    ///< The token of a leaf.
  void op(const ZmString& op);                      ///< Sets it; any text.
  void value(const ZmString& value);      ///< Sets it; it comes before every other source.
  void name(const ZmString& name);        ///< Sets it; "" makes an inner node.
  ZmExpression* a() const { return a_; }  ///< First child, lent; null when there is none.
  ZmExpression* b() const { return b_; }  ///< Second child, lent; null when there is none.
  /// Sets the first child and owns it. The previous one is not destroyed: it now belongs to whoever
  /// took it with a().
  void a(ZmExpression* a);
  void b(ZmExpression* b);  ///< The same for the second child.
  /// @}

  /// @name Sources of values, for this node and all below it
  /// Set them before parsing, so that new nodes get them, or afterwards.
  /// @{
  void validreq(ValidRequest request);  ///< Null for none.
  void valuereq(ValueRequest request);  ///< Null for none.
  /// Counts one hold for each node; null for none. The nodes' holds on an earlier reference are
  /// forgotten, not given back, so set it once. A node that is destroyed gives its hold back, and
  /// the last one destroys the reference with delete.
  void reference(ZmReference* reference);
  /// @}

  /// @name Parsing
  /// Each gives 1 when the tokens make exactly one tree. The result is put into this node: a, b,
  /// value, name and op are overwritten, on failure by those of the first operand, if there is one.
  /// Children that the node had before are *not* destroyed: they are left to whoever took them
  /// with a() and b(). To parse into a used node without taking them, copy an empty expression into
  /// it first.
  ///
  /// Infix: operators of equal strength group to the right ("a - b - c" is a - (b - c)), missing
  /// operands become null children, and unbalanced parentheses are accepted. Prefix and postfix
  /// know no parentheses and no unary minus, and fail without a second operand; postfix takes the
  /// operand written last as a, so that "x y -" is y - x.
  /// @{

  /// Of tokens made by tokenize(). Notation 2 is prefix, 1 postfix, any other infix.
  unsigned char parse(const ZmString& text, int notation);
  unsigned char callbackparse(const ZmString& text);  ///< Infix, of callbacktokenize()'s tokens.
  unsigned char valueparse(const ZmString& text);     ///< Infix, of valuetokenize()'s tokens.
  /// Of ready tokens; infix parsing rewrites those that are a unary minus to "--".
  unsigned char _parse(ZmStringList& tokens, int notation);
  /// How tightly an operator binds: a power of two, 1 for any other text.
  static int precedence(const ZmString& op);
  /// @}

  /// @name Using the tree
  /// @{

  /// 1 when each leaf has a value, its reference or callback knows its name, or it has neither.
  /// What is below an inner node without b, as a unary one of prefix or postfix, is not looked at.
  unsigned char isvalid() const;
  /// Appends the names that the reference takes for variables, the right operand's first; names may
  /// come several times. Without a reference there are none.
  void variables(ZmStringList& out) const;
  /// Evaluates, the right operand first. What gives nothing (an inner node without b, a binary one
  /// without a) leaves the result as it was; as an operand it counts as the integer 0.
  void eval(ZmScalar& result);
  /// Prints the tree on standard output, a node a line, children two blanks further in.
  void display(int indent) const;
  /// @}

  /// @name Tokens
  /// Cut the source into tokens, which are appended to the list. White space is space, TAB, CR and
  /// LF. A quoted string ends at the next quote of its kind or with the text and comes without its
  /// quotes; in it a backslash makes the next character plain.
  /// @{

  /// The expression language: the one-character tokens ( ) * + - / : ? ! & | < = >, the pairs
  /// "!=", "&&", "||" and any two of "<=>", quoted strings, and words between them. A minus always
  /// stands alone, so "-5" is two tokens.
  static void tokenize(const ZmString& source, ZmStringList& tokens);
  /// Parentheses, quoted strings, and words.
  static void callbacktokenize(const ZmString& source, ZmStringList& tokens);
  /// The same, and a "," that begins a token, and groups in braces that do, which come without the
  /// outer ones and run to the end when unclosed. A comma inside a word belongs to it.
  static void valuetokenize(const ZmString& source, ZmStringList& tokens);
  /// "[", "]" and words.
  static void rangetokenize(const ZmString& source, ZmStringList& tokens);
  /// Parentheses, names of upper-case letters and "_", quoted parts with their quotes, and the text
  /// between them, in which quotes and "_" are plain. Nothing is dropped.
  static void commandtokenize(const ZmString& source, ZmStringList& tokens);
  /// @}

  /// @name Splitting
  /// Results are appended. Unless said otherwise every separator ends an element, which may be
  /// empty, the last element counts only when it is not empty, and nothing is trimmed.
  /// @{

  /// At commas outside quotes and braces, which stay in the elements; elements are trimmed.
  static void split(const ZmString& source, ZmStringList& elements);
  /// The same, each element stored under itself as key.
  static void split(const ZmString& source, ZmStringHash& elements);
  /// At commas outside brackets; white space outside brackets is dropped. A "[" directly behind a
  /// "]" opens no bracket.
  static void splitcomma(const ZmString& source, ZmStringList& elements);
  static void splitslash(const ZmString& source, ZmStringList& elements);  ///< At "/".
  static void splittab(const ZmString& source, ZmStringList& elements);    ///< At TAB.
  /// At the separator.
  static void splitchar(const ZmString& source, char separator, ZmStringList& elements);
  /// At runs of white space; no element is empty.
  static void splitspace(const ZmString& source, ZmStringList& elements);
  /// At the first "."; without one all goes to the left.
  static void splitperiod(const ZmString& source, ZmString& left, ZmString& right);
  /// At the first "=": the left without any white space, the right without leading white space. 0
  /// without "=", when all goes to the left.
  static unsigned char splitequal(const ZmString& source, ZmString& left, ZmString& right);
  /// The same at the first ":". 0 when a "=" comes first; without either the last character is left
  /// out.
  static unsigned char splitbecomes(const ZmString& source, ZmString& left, ZmString& right);
  /// @}

 private:
  class Builder;     // of trees, for the parsers
  class Infix;       // the parser of infix notation
  class Evaluation;  // one eval() call

  template <class Node, class Visit>
  static void _each(Node* root, Visit visit);
  static void _destroy(ZmExpression* tree);
  void _sources(const ZmExpression& other);
  void _fill(const ZmExpression& other);
  void _hold(ZmReference* reference);
  bool _parse(ZmTokens& tokens, int notation);
  bool _unary() const;
  bool _known() const;

  ZmString op_;
  ZmExpression* a_ = nullptr;
  ZmExpression* b_ = nullptr;
  ZmString value_;
  ZmString name_;
  ValueRequest valuereq_ = nullptr;
  ValidRequest validreq_ = nullptr;
  ZmReference* reference_ = nullptr;
  ZmExpressionCache cache_;
};

#endif
