#include "platform/win32/desktop/apartment.h"

#include <windows.h>
// Takes its basic types from the one above.
#include <objbase.h>

namespace coffrelune {

Apartment::Apartment()
    : entered_(
          SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}

Apartment::~Apartment() {
    if (entered_) CoUninitialize();
}

}  // namespace coffrelune
