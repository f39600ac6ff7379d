// Makes one call of an allocating or file function fail. Linked into a program it stands before the
// C library's own functions, for every caller.
#ifndef ZM_FAULTS_H
#define ZM_FAULTS_H

namespace faults {

enum Kind { kMemory, kFiles };

// The n-th call from now on fails, n counting from 1; none for 0.
void arm(Kind kind, long n);
void disarm();
// Whether one has failed since arm().
bool failed();
// Allocations that have not been given back.
long live();

}  // namespace faults

#endif
