#include "platform/win32/access_rights.h"

#include <windows.h>

#include <vector>

namespace coffrelune {
namespace {

/// Without this request the system drops the mark that says which rights come from the directory,
/// and a later change there would no longer reach the file:
/// https://learn.microsoft.com/windows/win32/secauthz/security-descriptor-control
void keepInheritance(PSECURITY_DESCRIPTOR rights) {
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    if (GetSecurityDescriptorControl(rights, &control, &revision) == 0) return;
    if ((control & SE_DACL_AUTO_INHERITED) == 0) return;
    SetSecurityDescriptorControl(rights, SE_DACL_AUTO_INHERIT_REQ, SE_DACL_AUTO_INHERIT_REQ);
}

}  // namespace

void keepAccessRights(const NativePath& old, const NativePath& fresh) {
    DWORD size = 0;
    GetFileSecurityW(old.text.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    if (size == 0) return;
    std::vector<unsigned char> rights(size);
    if (GetFileSecurityW(old.text.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size) ==
        0) {
        return;
    }
    keepInheritance(rights.data());
    SetFileSecurityW(fresh.text.c_str(), DACL_SECURITY_INFORMATION, rights.data());
}

}  // namespace coffrelune
