#include "platform/win32/desktop/win32_registry.h"

#include <windows.h>

#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

class OpenKey {
  public:
    OpenKey(RegistryService::Root root, const std::string& path) {
        const HKEY top =
            root == RegistryService::Root::currentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        error_ = RegOpenKeyExW(top, wide(path).c_str(), 0, KEY_ALL_ACCESS, &key_);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    ~OpenKey() {
        if (error_ == ERROR_SUCCESS) RegCloseKey(key_);
    }

    LSTATUS error() const { return error_; }
    HKEY get() const { return key_; }

  private:
    HKEY key_ = nullptr;
    LSTATUS error_;
};

template <typename Step>
Status withKey(RegistryService::Root root, const std::string& path, Step step) {
    const OpenKey key(root, path);
    const LSTATUS error = key.error() == ERROR_SUCCESS ? step(key.get()) : key.error();
    if (error == ERROR_SUCCESS) return {};
    return Status::failure(static_cast<std::uint32_t>(error), path);
}

}  // namespace

Status Win32Registry::setText(Root root, const std::string& key, const std::string& name,
                              const std::string& data) {
    const std::wstring text = wide(data);
    return withKey(root, key, [&](HKEY opened) {
        return RegSetValueExW(opened, wide(name).c_str(), 0, REG_SZ,
                              reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>(text.size() * sizeof(wchar_t)));
    });
}

Status Win32Registry::deleteValue(Root root, const std::string& key, const std::string& name) {
    return withKey(root, key,
                   [&](HKEY opened) { return RegDeleteValueW(opened, wide(name).c_str()); });
}

}  // namespace coffrelune
