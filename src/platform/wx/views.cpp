#include "platform/wx/views.h"

#include "platform/wx/about_view.h"
#include "platform/wx/config_view.h"
#include "platform/wx/confirm_view.h"
#include "platform/wx/copie_view.h"
#include "platform/wx/drive_list_view.h"
#include "platform/wx/error_list_view.h"
#include "platform/wx/exclude_view.h"
#include "platform/wx/text_dialog_view.h"

namespace coffrelune {
namespace {

template <typename View, typename Form>
std::unique_ptr<DialogView> viewOf(wxWindow* parent, ViewContext& context, Window& window) {
    auto* form = dynamic_cast<Form*>(&window);
    return form == nullptr ? nullptr : std::make_unique<View>(parent, context, *form);
}

}  // namespace

std::unique_ptr<DialogView> makeDialogView(wxWindow* parent, ViewContext& context, Window& window) {
    using Maker = std::unique_ptr<DialogView> (*)(wxWindow*, ViewContext&, Window&);
    static constexpr Maker makers[] = {
        viewOf<CopieView, Copie>,           viewOf<ConfirmView, frmConfirm>,
        viewOf<ErrorListView, VisuErrFrm>,  viewOf<ConfigView, ConfigForm>,
        viewOf<ExcludeView, ExcludeForm>,   viewOf<DriveListView, DriveListFrm>,
        viewOf<TextDialogView, TextDialog>, viewOf<AboutView, frmAbout>,
    };
    for (const Maker maker : makers) {
        if (auto view = maker(parent, context, window); view != nullptr) return view;
    }
    return nullptr;
}

}  // namespace coffrelune
