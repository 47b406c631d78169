#pragma once

namespace launcher::test {

// Tells whether an object on the heap was deleted while this lives. One at a time; a program that
// links delete_watch.cpp has its global operators new and delete replaced.
class DeleteWatch {
  public:
    explicit DeleteWatch(const void* object);
    DeleteWatch(const DeleteWatch&) = delete;
    DeleteWatch& operator=(const DeleteWatch&) = delete;
    ~DeleteWatch();

    bool Deleted() const;
};

}  // namespace launcher::test
