// What public headers need of std::unique_ptr, whose header is as long as all others together.
// Internal.
#ifndef ZM_OWNED_H
#define ZM_OWNED_H

// Owns one object, or none.
template <class T>
class ZmOwned {
 public:
  ZmOwned() = default;
  explicit ZmOwned(T* object) : object_(object) {}
  ZmOwned(ZmOwned&& other) noexcept : object_(other.release()) {}
  ZmOwned& operator=(ZmOwned&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~ZmOwned() { delete object_; }

  T* get() const { return object_; }
  T& operator*() const { return *object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  // The object, now the caller's.
  T* release() {
    T* const object = object_;
    object_ = nullptr;
    return object;
  }
  void reset(T* object = nullptr) {
    T* const before = object_;
    object_ = object;
    delete before;
  }

 private:
  T* object_ = nullptr;
};

#endif
