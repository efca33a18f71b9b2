#include "script/LayoutMgr.h"

#include "system/widgets/Container.h"
#include "system/widgets/ElideLabel.h"

#include <algorithm>
#include <utility>

#include <QEvent>
#include <QWidget>

namespace Marlox {

namespace {

bool IsHiddenOnPurpose(const QWidget& widget)
{
    return widget.testAttribute(Qt::WA_WState_Hidden) &&
           widget.testAttribute(Qt::WA_WState_ExplicitShowHide);
}

/// What a widget asks for along one axis, as Qt's own layouts read size policies.
LayoutExtent ReadExtent(int hint, int minimumHint, int minimum, int maximum,
                        QSizePolicy::Policy policy)
{
    const bool shrinks = int(policy) & int(QSizePolicy::ShrinkFlag);
    const bool grows = int(policy) & int(QSizePolicy::GrowFlag) || policy == QSizePolicy::Ignored;
    const int preferred = std::max(hint, minimumHint);
    LayoutExtent extent;
    if (minimum > 0)
        extent.minimum = minimum;
    else if (policy != QSizePolicy::Ignored)
        extent.minimum = std::max(shrinks ? minimumHint : preferred, 0);
    extent.maximum = std::min(maximum, LayoutExtent::Any);
    if (!grows)
        extent.maximum = std::min(extent.maximum, std::max(preferred, extent.minimum));
    extent.minimum = std::min(extent.minimum, extent.maximum);
    extent.preferred = std::clamp(preferred, extent.minimum, extent.maximum);
    return extent;
}

void CallBack(LayoutNode& node, const LayoutDescription& description, LayoutMgr& manager,
              LayoutCallback callback, void* context)
{
    callback(&manager, node, description.source, context);
    for (std::size_t i = 0; i < description.children.size(); ++i)
        CallBack(static_cast<LayoutNode&>(*node.Children()[i]), description.children[i], manager,
                 callback, context);
}

} // namespace

LayoutObj* LayoutMgr::Build(const ScriptVal& description, QWidget* parent, LayoutCallback callback,
                            void* context, QString* error)
{
    LayoutDescription read;
    std::string reason;
    if (!parent || !ReadLayoutDescription(description, read, reason)) {
        if (error)
            *error = parent ? QString::fromStdString(reason)
                            : QStringLiteral("there is no widget to build the layout in");
        return nullptr;
    }
    auto* manager = new LayoutMgr(parent);
    manager->root_ = std::make_unique<LayoutNode>(read, *manager, nullptr);
    if (callback)
        CallBack(*manager->root_, read, *manager, callback, context);
    return manager->root_.get();
}

LayoutMgr::LayoutMgr(QWidget* host) : QObject(host), host_(host)
{
    host->installEventFilter(this);
}

LayoutMgr::~LayoutMgr()
{
    const std::unique_ptr<LayoutNode> gone =
        std::move(root_); // so that the root does not delete us
}

bool LayoutMgr::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest && watched == host_ && root_) {
        root_->Invalidate();
        if (root_->placed_)
            root_->SetGeometry(root_->Geometry());
    }
    return false;
}

LayoutNode::LayoutNode(const LayoutDescription& description, LayoutMgr& manager, LayoutNode* parent)
    : manager_(manager), parent_(parent), type_(description.type), name_(description.name),
      box_(description.box)
{
    owned_.reserve(description.children.size());
    children_.reserve(description.children.size());
    box_.children.reserve(description.children.size());
    for (const LayoutDescription& child : description.children) {
        owned_.push_back(std::make_unique<LayoutNode>(child, manager, this));
        children_.push_back(owned_.back().get());
        box_.children.push_back(&owned_.back()->box_);
    }
    if (type_ == LayoutDescription::Type::Label)
        MakeLabel(description);
}

LayoutNode::~LayoutNode()
{
    owned_.clear();
    if (ownsWidget_)
        delete widget_;
    // Deleted as LayoutObj by whoever had it built: the manager goes with its root.
    if (manager_.root_.get() == this) {
        manager_.root_.release();
        delete &manager_;
    }
}

MxID LayoutNode::TypeName() const
{
    return MxID(NameOfLayoutType(type_));
}

bool LayoutNode::IsContainer() const
{
    return type_ == LayoutDescription::Type::Container;
}

void LayoutNode::MakeLabel(const LayoutDescription& description)
{
    constexpr Qt::Alignment horizontal[] = {Qt::AlignLeft, Qt::AlignLeft, Qt::AlignHCenter,
                                            Qt::AlignRight};
    auto* label = new ElideLabel(manager_.Host());
    label->SetText(QString::fromStdString(description.text));
    label->SetAlignment(horizontal[std::size_t(description.box.align[0])] | Qt::AlignVCenter);
    box_.align[0] = LayoutBox::Align::Fill; // the text is aligned within the label
    widget_ = Adopt(label);
    ownsWidget_ = true;
}

/// Makes a widget a child of the layout's, visible unless it was hidden on purpose.
QWidget* LayoutNode::Adopt(QWidget* widget) const
{
    if (widget->parentWidget() != manager_.Host())
        widget->setParent(manager_.Host());
    if (widget->isHidden() && !IsHiddenOnPurpose(*widget))
        widget->show();
    return widget;
}

void LayoutNode::SetWidget(QWidget* widget)
{
    if (IsContainer() && widget && !qobject_cast<Container*>(widget)) {
        AddWidget(widget);
        return;
    }
    if (ownsWidget_ && widget_ != widget)
        delete widget_;
    ownsWidget_ = ownsWidget_ && widget_ == widget;
    widget_ = widget ? Adopt(widget) : nullptr;
    Invalidate();
}

QWidget* LayoutNode::Widget() const
{
    if (IsContainer() && !widget_) {
        auto* made = new Container(manager_.Host());
        made->SetSpacing(box_.spacing);
        widget_ = Adopt(made);
        ownsWidget_ = true;
    }
    return widget_;
}

void LayoutNode::AddWidget(QWidget* widget)
{
    if (!widget)
        return;
    if (!IsContainer()) {
        SetWidget(widget);
        return;
    }
    static_cast<Container*>(Widget())->AddWidget(widget);
    if (widget->isHidden() && !IsHiddenOnPurpose(*widget))
        widget->show();
    Invalidate();
}

/// Sizes are remembered until Invalidate; who is hidden is looked up each time, because Qt tells
/// nobody while the layout's own widget is hidden.
void LayoutNode::ReadContents()
{
    for (const auto& child : owned_)
        child->ReadContents();
    if (box_.kind == LayoutBox::Kind::Leaf)
        ReadContent();
}

void LayoutNode::ReadContent()
{
    box_.hasContent = widget_ != nullptr || IsContainer();
    box_.contentVisible = widget_ && !IsHiddenOnPurpose(*widget_);
    if (!box_.contentVisible)
        return;
    if (!hintsValid_) {
        ReadHints(*widget_);
        hintsValid_ = true;
    }
    if (IsContainer() && box_.content[1].preferred == 0)
        box_.contentVisible = false;
}

void LayoutNode::ReadHints(const QWidget& widget)
{
    const QSize hint = widget.sizeHint();
    const QSize minimumHint = widget.minimumSizeHint();
    const QSizePolicy policy = widget.sizePolicy();
    box_.content[0] = ReadExtent(hint.width(), minimumHint.width(), widget.minimumWidth(),
                                 widget.maximumWidth(), policy.horizontalPolicy());
    box_.content[1] = ReadExtent(hint.height(), minimumHint.height(), widget.minimumHeight(),
                                 widget.maximumHeight(), policy.verticalPolicy());
    // The layout's own text is shown whole before anybody else gets more than the minimum.
    if (type_ == LayoutDescription::Type::Label && ownsWidget_)
        box_.content[0].minimum = box_.content[0].preferred;
}

void LayoutNode::MinimumSize(int& width, int& height) const
{
    auto& self = const_cast<LayoutNode&>(*this); // measuring is remembered in the boxes
    self.ReadContents();
    self.box_.Measure();
    width = box_.measured[0].minimum;
    height = box_.measured[1].minimum;
}

void LayoutNode::MaximumSize(int& width, int& height) const
{
    int ignored = 0;
    MinimumSize(ignored, ignored);
    width = box_.measured[0].maximum;
    height = box_.measured[1].maximum;
}

void LayoutNode::SetGeometry(const MxRect& rect)
{
    placed_ = true;
    ReadContents();
    box_.Measure();
    box_.Arrange(rect);
    box_.rect = rect;
    PlaceWidgets();
}

void LayoutNode::PlaceWidgets()
{
    for (const auto& child : owned_)
        child->PlaceWidgets();
    if (widget_ && box_.shown)
        widget_->setGeometry(ToQRect(box_.inner));
}

void LayoutNode::Invalidate()
{
    hintsValid_ = false;
    for (const auto& child : owned_)
        child->Invalidate();
}

} // namespace Marlox
