#ifndef ZM_EXPRESSION_LIST_H
#define ZM_EXPRESSION_LIST_H

#include "ZmExpression.h"
#include "ZmList.h"

/// A list of expressions. They are never serialised: unpacking gives as many empty ones.
class ZM_EXPORT ZmExpressionList : public ZmList<ZmExpression> {
 public:
  int type() const override { return 66; }                         ///< The type code.
  ZmString typeXML() const override { return "expression_list"; }  ///< The XML element name.
};

#endif
