#pragma once

#include "platform/win32/native_path.h"

namespace coffrelune {

/// Who may do what with the old file holds for the new one as well, which is empty yet. A volume
/// without access rights has none to give, and a user may lack the right to set them: the new file
/// then has those that its directory gives, as every other copy there.
void keepAccessRights(const NativePath& old, const NativePath& fresh);

}  // namespace coffrelune
