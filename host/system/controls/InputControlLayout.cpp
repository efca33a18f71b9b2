// An InputControl as a widget of the page: opening and closing, sizes, its layout.

#include "system/controls/ControlWnd_p.h"
#include "system/controls/InputControl_p.h"
#include "system/resources/Resources.h"

namespace Marlox {

bool InputControl::Open(ControlWnd* window, MxRect& rect, TagList*)
{
    if (!window || window_)
        return false;
    window_ = window;
    setParent(window);
    setGeometry(ToQRect(rect));
    ApplyEnabled();
    return true;
}

void InputControl::Close(TagList*)
{
    if (!window_)
        return;
    EndGesture();
    RemoveLayout();
    window_ = nullptr;
    hide();
    setParent(nullptr);
}

void InputControl::RemoveLayout()
{
    for (const Private::ExpressionPlace& place : d_->places) {
        if (place.line) { // perhaps it is its commit that closes the page
            place.line->setParent(nullptr);
            place.line->deleteLater();
        }
    }
    d_->places.clear();
    d_->partLayouts.clear();
    delete std::exchange(layout_, nullptr);
    d_->fault.clear();
}

bool InputControl::GetMinSize(int& width, int& height, TagList*)
{
    width = 0;
    height = InspectorLineHeight;
    if (!d_->fault.isEmpty())
        height = 2 * InspectorLineHeight;
    else if (layout_)
        layout_->MinimumSize(width, height);
    else if (QWidget::layout()) {
        width = minimumSizeHint().width();
        height = minimumSizeHint().height();
    }
    return true;
}

bool InputControl::GetMaxSize(int& width, int& height, TagList* tags)
{
    if (layout_ && d_->fault.isEmpty())
        layout_->MaximumSize(width, height);
    else
        width = height = QWIDGETSIZE_MAX;
    if (!d_->stretch) {
        int minimumWidth = 0;
        GetMinSize(minimumWidth, height, tags);
    }
    return true;
}

bool InputControl::SetSize(int& width, int& height, TagList*)
{
    resize(width, height);
    if (!layout_ || !d_->fault.isEmpty())
        return true;
    int layoutHeight = height;
    if (!d_->stretch) {
        int minimumWidth = 0;
        layout_->MinimumSize(minimumWidth, layoutHeight);
    }
    layout_->SetGeometry({0, 0, width, layoutHeight});
    return true;
}

void InputControl::RecalcControlSize()
{
    if (layout_)
        layout_->Invalidate();
    if (window_)
        window_->RecalcSizes(this);
}

LayoutObj* InputControl::CreateLayout(const ScriptVal& layout, bool stretch,
                                      LayoutCallback callback, void* context)
{
    d_->stretch = stretch;
    QString error;
    ScriptServices* services = ScriptServices::Installed();
    if (!services)
        error = tr("scripting is not available");
    else
        layout_ = services->BuildLayout(layout, this, callback, context, &error);
    if (!layout_) {
        d_->fault = tr("The control's layout can't be built: %1").arg(error);
        if (!d_->layoutName.isEmpty())
            d_->fault = tr("Layout \"%1\": %2").arg(d_->layoutName, d_->fault);
        d_->TellFault(*this);
    }
    return layout_;
}

LayoutObj* InputControl::LoadLayout(const char* resourceName, bool stretch, LayoutCallback callback,
                                    void* context)
{
    const QString name = QString::fromUtf8(resourceName);
    const ScriptVal description = ResData::LayoutOf(resourceName);
    if (!description.IsTable()) {
        d_->fault = tr("The look pack's layout \"%1\" is missing or broken").arg(name);
        d_->TellFault(*this);
        return nullptr;
    }
    d_->layoutName = name;
    return CreateLayout(description, stretch, callback, context);
}

void InputControl::AddPartLayout(LayoutObj* layout)
{
    d_->partLayouts.push_back(layout);
}

LayoutObj* InputControl::FindLayoutObj(const MxID& name) const
{
    LayoutObj* found = FindLayoutObj(layout_, name);
    for (std::size_t i = 0; !found && i < d_->partLayouts.size(); ++i)
        found = FindLayoutObj(d_->partLayouts[i], name);
    return found;
}

LayoutObj* InputControl::FindLayoutObj(LayoutObj* root, const MxID& name)
{
    return root ? root->Find(name) : nullptr;
}

void InputControl::Report(const QString& text) const
{
    if (window_)
        emit window_->Problem(text);
}

/// Controls of one page that share a layout share its fault, which is told once.
void InputControl::Private::TellFault(const InputControl& self) const
{
    const ControlWnd* page = self.window_;
    if (!page || page->d_->reportedFaults.contains(fault))
        return;
    page->d_->reportedFaults << fault;
    self.Report(fault);
}

const QString& InputControl::Fault() const
{
    return d_->fault;
}

MxColor InputControl::GetBackgroundColor() const
{
    if (window_)
        return window_->BackgroundColor();
    const QColor color = palette().color(QPalette::Window);
    return {color.red(), color.green(), color.blue(), color.alpha()};
}

} // namespace Marlox
