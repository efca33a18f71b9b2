#pragma once

#include "script/LayoutDescription.h"
#include "system/base/ScriptServices.h"
#include "system/controls/Layout.h"

#include <memory>
#include <vector>

#include <QObject>
#include <QPointer>
#include <QString>

namespace Marlox {

class LayoutNode;

/// Builds a layout from its description and keeps it: a child object of the widget that the layout
/// stands in. It arranges the layout anew when a widget in it wants another size, comes or goes.
/// Deleting the root object, the manager or the widget each takes the layout away, with the labels
/// and containers it made; widgets placed in items stay with the widget.
class LayoutMgr : public QObject {
public:
    /// The root object, owned by `parent`; null and `error` if the description is broken. The
    /// callback gets each object in the order of the description, when all of them exist already.
    static LayoutObj* Build(const ScriptVal& description, QWidget* parent, LayoutCallback callback,
                            void* context, QString* error);
    ~LayoutMgr() override;

    QWidget* Host() const { return host_; }
    LayoutNode* Root() const { return root_.get(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    friend class LayoutNode;

    explicit LayoutMgr(QWidget* host);

    QWidget* host_;
    std::unique_ptr<LayoutNode> root_;
};

/// One object of a layout: its box, and the widget in it.
class LayoutNode : public LayoutObj {
public:
    LayoutNode(const LayoutDescription& description, LayoutMgr& manager, LayoutNode* parent);
    ~LayoutNode() override;

    const MxID& Name() const override { return name_; }
    MxID TypeName() const override;
    LayoutObj* Parent() const override { return parent_; }
    const std::vector<LayoutObj*>& Children() const override { return children_; }
    bool IsContainer() const override;
    void SetWidget(QWidget* widget) override;
    QWidget* Widget() const override;
    void AddWidget(QWidget* widget) override;
    void MinimumSize(int& width, int& height) const override;
    void MaximumSize(int& width, int& height) const override;
    void SetGeometry(const MxRect& rect) override;
    MxRect Geometry() const override { return box_.rect; }
    void Invalidate() override;

private:
    friend class LayoutMgr;

    QWidget* Adopt(QWidget* widget) const;
    void MakeLabel(const LayoutDescription& description);
    void ReadContent();
    void ReadContents();
    void ReadHints(const QWidget& widget);
    void PlaceWidgets();

    LayoutMgr& manager_;
    LayoutNode* parent_;
    LayoutDescription::Type type_;
    MxID name_;
    LayoutBox box_;
    bool hintsValid_ = false;
    bool placed_ = false; // SetGeometry was called here
    std::vector<std::unique_ptr<LayoutNode>> owned_;
    std::vector<LayoutObj*> children_; // the same
    // Containers make theirs when first asked for it, labels at once; those go with the layout.
    mutable QPointer<QWidget> widget_;
    mutable bool ownsWidget_ = false;
};

} // namespace Marlox
