#pragma once
#include <vcruntime_exception.h>
class type_info {
  public:
    type_info(const type_info&) = delete;
    type_info& operator=(const type_info&) = delete;
    virtual ~type_info();
    bool operator==(const type_info& other) const noexcept;
    bool before(const type_info& other) const noexcept;
    size_t hash_code() const noexcept;
    const char* name() const noexcept;
    const char* raw_name() const noexcept;
};
namespace std {
using ::type_info;
class bad_cast : public exception {
  public:
    bad_cast() noexcept;
};
class bad_typeid : public exception {
  public:
    bad_typeid() noexcept;
};
}  // namespace std
