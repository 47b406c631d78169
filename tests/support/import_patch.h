#pragma once

namespace launcher::test {

// Replaces a Windows function for everything linked into this test program while it lives, by
// changing the program's own import table: the way to see how the code takes a call that fails
// only on other machines. The code under test stays as it is.
//
//   const ImportPatch patch("GetFileAttributesW", +[](LPCWSTR) -> DWORD WINAPI { ... });
//
// Throws std::runtime_error when the program does not import the function, so that a test cannot
// pass because its patch went nowhere.
class ImportPatch {
  public:
    template <class Function>
    ImportPatch(const char* function, Function* replacement)
        : ImportPatch(function, reinterpret_cast<void*>(replacement)) {}
    ImportPatch(const char* function, void* replacement);
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;
    ~ImportPatch();

    // The real function, for a replacement that calls on.
    void* Original() const { return original_; }

  private:
    void** slot_;
    void* original_;
};

}  // namespace launcher::test
