// A stack of small plain values whose first ones need no heap. Internal; it carries the walks over
// trees, which must not recurse as deep as the input asks.
#ifndef ZM_EXPRESSION_STACK_H
#define ZM_EXPRESSION_STACK_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

template <class T, std::size_t N = 32>
class ZmExpressionStack {
 public:
  static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= alignof(std::max_align_t));

  // The places are left as they are: zeroing them would cost more than most walks.
  ZmExpressionStack() : items_(reinterpret_cast<T*>(first_)) {}
  ZmExpressionStack(const ZmExpressionStack&) = delete;
  ZmExpressionStack& operator=(const ZmExpressionStack&) = delete;

  bool empty() const { return length_ == 0; }
  void push(const T& item) {
    if (length_ == room_) grow();
    new (items_ + length_++) T(item);
  }
  T& top() { return items_[length_ - 1]; }
  T pop() { return items_[--length_]; }

 private:
  void grow() {
    auto more = std::make_unique_for_overwrite<std::byte[]>(2 * room_ * sizeof(T));
    std::memcpy(more.get(), items_, length_ * sizeof(T));
    heap_ = std::move(more);
    items_ = reinterpret_cast<T*>(heap_.get());
    room_ *= 2;
  }

  alignas(T) std::byte first_[N * sizeof(T)];
  std::unique_ptr<std::byte[]> heap_;
  T* items_;
  std::size_t length_ = 0;
  std::size_t room_ = N;
};

#endif
