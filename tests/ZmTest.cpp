#include "ZmTest.h"

#include <unistd.h>

namespace {

// A test whose code ends the process with 0 has not passed. Those of EXPECT_EXIT end another one.
const auto* const kTests = testing::UnitTest::GetInstance();  // outlives what is registered next
const pid_t kProcess = ::getpid();
[[maybe_unused]] const int kGuard = std::atexit([] {
  if (::getpid() == kProcess && kTests->current_test_info()) ::_exit(1);
});

}  // namespace
