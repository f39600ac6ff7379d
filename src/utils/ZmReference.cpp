#include "ZmReference.h"

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
ZmReference& ZmReference::operator=(const ZmReference&) { return *this; }

void ZmReference::value(const ZmString& name, ZmString& out) { out = name; }

void ZmReference::copy(const ZmReference&) {}
