#pragma once
#include <vcruntime.h>
namespace std {
class exception {
  public:
    exception() noexcept;
    explicit exception(const char* what) noexcept;
    exception(const char* what, int) noexcept;
    exception(const exception& other) noexcept;
    exception& operator=(const exception& other) noexcept;
    virtual ~exception() noexcept;
    virtual const char* what() const;
};
class bad_exception : public exception {
  public:
    bad_exception() noexcept;
};
class bad_alloc : public exception {
  public:
    bad_alloc() noexcept;
};
class bad_array_new_length : public bad_alloc {
  public:
    bad_array_new_length() noexcept;
};
}  // namespace std
