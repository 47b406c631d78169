#include "mediatool/base/sha256.h"

#include <stdexcept>

#include "platform/libraries.h"

namespace launcher::mediatool {
namespace {

constexpr wchar_t kLibrary[] = L"bcrypt.dll";
constexpr std::size_t kHashSize = 32;  // bytes

void Need(bool isThere) {
    if (!isThere) throw std::runtime_error("Windows computes no SHA-256 checksums.");
}

void Check(NTSTATUS status) {
    Need(status >= 0);
}

// Both stay open and loaded: they are used to the end of the run.
BCRYPT_ALG_HANDLE Provider() {
    static const BCRYPT_ALG_HANDLE provider = [] {
        BCRYPT_ALG_HANDLE opened = nullptr;
        Check(TheCryptography().openProvider(&opened, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
        return opened;
    }();
    return provider;
}

}  // namespace

Cryptography::Cryptography() {
    // By its whole path: a Windows 7 without updates looks for a mere name beside this program.
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    const std::wstring path = folder + std::wstring(L"\\") + kLibrary;
    library = Library(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    Need(static_cast<bool>(library));
    openProvider = ModuleFunction<decltype(openProvider)>(kLibrary, "BCryptOpenAlgorithmProvider");
    createHash = ModuleFunction<decltype(createHash)>(kLibrary, "BCryptCreateHash");
    hashData = ModuleFunction<decltype(hashData)>(kLibrary, "BCryptHashData");
    finishHash = ModuleFunction<decltype(finishHash)>(kLibrary, "BCryptFinishHash");
    destroyHash = ModuleFunction<decltype(destroyHash)>(kLibrary, "BCryptDestroyHash");
}

const Cryptography& TheCryptography() {
    static const Cryptography cryptography;
    return cryptography;
}

// Since Windows 7 the system itself finds the memory for a hash.
Sha256::Sha256() {
    Check(TheCryptography().createHash(Provider(), hash_.Put(), nullptr, 0, nullptr, 0, 0));
}

void Sha256::Add(std::string_view bytes) {
    auto* const data = reinterpret_cast<PUCHAR>(const_cast<char*>(bytes.data()));
    Check(TheCryptography().hashData(hash_.Get(), data, static_cast<ULONG>(bytes.size()), 0));
}

std::string Sha256::Digits() {
    constexpr char kDigits[] = "0123456789abcdef";
    unsigned char bytes[kHashSize] = {};
    Check(TheCryptography().finishHash(hash_.Get(), bytes, kHashSize, 0));
    std::string text;
    for (const unsigned char byte : bytes)
        text += {kDigits[byte >> 4], kDigits[byte & 15]};
    return text;
}

}  // namespace launcher::mediatool
