#include "controls/polyline/PolyPointDlg.h"

#include "controls/polyline/DialogPlace.h"
#include "controls/polyline/PolyKeysChange.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyPreferences.h"
#include "system/document/MarloxDoc.h"
#include "system/resources/Resources.h"
#include "system/widgets/TimeCodeEdit.h"

#include <cmath>

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace Marlox {

namespace {

const ResData layoutResource("Dialogs.PolyPoint.Layout");

constexpr char editText[] = "Edit Points"; // of undo entries
constexpr char tensionText[] = "Tensioning Points";
constexpr int decimals = 3;      // of pixels
constexpr int buttonWidth = 36;  // pixels
constexpr double farthest = 1e7; // pixels
constexpr char labelNames[][16] = {"m_LabelNumber", "m_LabelPlace", "m_LabelIn", "m_LabelOut",
                                   "m_LabelTension"};

bool IsBezier(const PolyLine& shape)
{
    return shape.GetDataType() == MxID(CLSID_DataType_Polyline);
}

bool IsTypedInto(const TimeCodeEdit& edit)
{
    const auto* line = edit.findChild<QLineEdit*>(); // there while it has a cursor
    return line && line->isModified();
}

/// A way in the shape's coordinates, in pixels of the image, and back.
ShapePlace ToPixels(const PolyView& view, ShapePlace by)
{
    const ShapePlace way = view.Placement().OutVector(by);
    return {way.x * view.PixelSize().x, way.y * view.PixelSize().y};
}
ShapePlace FromPixels(const PolyView& view, ShapePlace by)
{
    return view.Placement().InVector({by.x / view.PixelSize().x, by.y / view.PixelSize().y});
}

} // namespace

PolyPointDlg::PolyPointDlg(PolyLineControl& control, QWidget* parent)
    : MxDialog(parent, Qt::Tool), control_(control)
{
    setObjectName("PolyPointDlg");
    setWindowTitle(tr("Point Editor"));
    MakeFields();
    LoadLayout(layoutResource.Name());
    edits_[X]->setFocus();
}

PolyPointDlg::~PolyPointDlg()
{
    EndDrag();
    if (isVisible())
        SaveDialogPlace(*this, PREF_PolyPointDlgLeft, PREF_PolyPointDlgTop);
}

TimeCodeEdit* PolyPointDlg::MakeEdit(const char* name, const QString& spoken, const QString& help)
{
    auto* edit = new TimeCodeEdit(this);
    edit->setObjectName(QStringLiteral("m_Edit") + QLatin1String(name));
    edit->setAccessibleName(spoken);
    edit->setToolTip(help);
    edit->SetRange(-farthest, farthest);
    edit->SetStep(1.0);
    edit->SetShownDecimals(decimals);
    edit->installEventFilter(this);
    return edit;
}

QLabel* PolyPointDlg::MakeLabel(const char* name, const QString& text, QWidget* buddy)
{
    auto* label = new QLabel(text, this);
    label->setObjectName(QLatin1String(name));
    label->setBuddy(buddy);
    return label;
}

void PolyPointDlg::MakeFields()
{
    const QString place = tr("In pixels of the image, from its lower left corner.");
    const QString handle = tr("From the point to the handle's end, in pixels of the image.");
    number_ = MakeEdit("Number", tr("Point"), tr("Its number in the shape, from 0."));
    number_->SetInteger(true);
    connect(number_, &TimeCodeEdit::editingFinished, this, &PolyPointDlg::OnNumber);
    const auto button = [this](const char* name, const QString& text, const QString& help) {
        auto* made = new QPushButton(text, this);
        made->setObjectName(QLatin1String(name));
        made->setAccessibleName(help);
        made->setToolTip(help);
        made->setAutoDefault(false);
        made->setMinimumWidth(buttonWidth);
        return made;
    };
    previous_ = button("m_PreviousButton", QStringLiteral("‹"), tr("Previous point (Page Up)"));
    next_ = button("m_NextButton", QStringLiteral("›"), tr("Next point (Page Down)"));
    connect(previous_, &QPushButton::clicked, this, &PolyPointDlg::OnPrevious);
    connect(next_, &QPushButton::clicked, this, &PolyPointDlg::OnNext);
    const QString spoken[] = {tr("X"),
                              tr("Y"),
                              tr("In handle X"),
                              tr("In handle Y"),
                              tr("Out handle X"),
                              tr("Out handle Y"),
                              tr("Tension")};
    for (int i = 0; i < FieldCount; ++i) {
        const QString help = i <= Y ? place : handle;
        edits_[std::size_t(i)] = MakeEdit(names[i], spoken[i], help);
        TimeCodeEdit* const edit = edits_[std::size_t(i)];
        connect(edit, &TimeCodeEdit::editingFinished, this, [this, i] { Commit(Field(i)); });
        connect(edit, &TimeCodeEdit::StartDrag, this, &PolyPointDlg::StartDrag);
        connect(edit, &TimeCodeEdit::EndDrag, this, &PolyPointDlg::EndDrag);
    }
    edits_[Tension]->setToolTip(tr("How far the curve is drawn to the polygon, 0 to 1."));
    edits_[Tension]->SetRange(0.0, 1.0);
    edits_[Tension]->SetStep(0.1);
    const QString texts[] = {tr("Point:"), tr("X, Y:"), tr("In:"), tr("Out:"), tr("Tension:")};
    TimeCodeEdit* const buddies[] = {number_, edits_[X], edits_[InX], edits_[OutX],
                                     edits_[Tension]};
    for (std::size_t i = 0; i < labels_.size(); ++i)
        labels_[i] = MakeLabel(labelNames[i], texts[i], buddies[i]);
    state_ = new QLabel(this);
    state_->setObjectName("m_StateLabel");
    state_->setTextFormat(Qt::PlainText);
}

// What it shows -----------------------------------------------------------------------------------

int PolyPointDlg::Index() const
{
    const PolyEditor& editor = control_.Editor();
    const SelMask& mask = editor.ActiveSelection();
    const int index = mask.IsLastSet() ? mask.Last() : mask.First();
    return editor.Active() && editor.Active()->GetPoint(index) ? index : -1;
}

bool PolyPointDlg::IsFree() const
{
    const PolyEditor& editor = control_.Editor();
    return Index() >= 0 && control_.View() && control_.IsShapeFree(editor.ActivePolygon()) &&
           !editor.Active()->GetPoint(Index())->Has(PPF_Locked);
}

bool PolyPointDlg::IsFollowing() const
{
    const PointLink* const link =
        Index() >= 0 ? control_.Editor().Active()->LinkAt(Index()) : nullptr;
    return link && link->Follows();
}

std::optional<PolyPointDlg::Numbers> PolyPointDlg::Read() const
{
    const int index = Index();
    if (index < 0 || !control_.View())
        return {};
    const PolyView view(*control_.View(), control_.Placement());
    const PolyPoint& point = control_.Editor().Active()->Points()[std::size_t(index)];
    const ShapePlace at = view.ToPixels(point.Place());
    const ShapePlace in = ToPixels(view, {point.inX, point.inY});
    const ShapePlace out = ToPixels(view, {point.outX, point.outY});
    const double tension = point.Has(PPF_Linear) ? 1.0 : point.tension;
    return Numbers{at.x, at.y, in.x, in.y, out.x, out.y, tension};
}

void PolyPointDlg::Follow()
{
    if (!isVisible())
        return;
    if (control_.Mode() == PolyDrawMode::Done) {
        close();
        return;
    }
    const PolyLine* shape = control_.Editor().Active();
    const int count = shape ? shape->GetCount() : 0;
    const std::optional<Numbers> numbers = Read();
    const bool free = IsFree();
    const bool follows = IsFollowing();
    const bool turns = count > 0 && !control_.Settings().lockSelection;
    number_->SetRange(0, std::max(count - 1, 0));
    number_->SetValue(std::max(Index(), 0));
    number_->setEnabled(turns);
    previous_->setEnabled(turns);
    next_->setEnabled(turns);
    ShowKind(!shape || IsBezier(*shape));
    for (std::size_t i = 0; i < edits_.size(); ++i) {
        edits_[i]->SetValue(numbers ? (*numbers)[i] : 0.0, decimals);
        edits_[i]->setEnabled(free && !(follows && i <= Y));
    }
    const int selected = control_.Editor().ActiveSelection().SetCount();
    state_->setText(!numbers       ? tr("No point is selected.")
                    : !free        ? tr("The point is locked.")
                    : follows      ? tr("The point follows another one.")
                    : selected > 1 ? tr("The last of %1 selected points").arg(selected)
                    : count == 1   ? tr("The only point")
                                   : tr("One of %1 points").arg(count));
}

void PolyPointDlg::ShowKind(bool hasHandles)
{
    if (showsHandles_ == hasHandles)
        return;
    showsHandles_ = hasHandles;
    for (const Field field : {InX, InY, OutX, OutY})
        edits_[field]->setVisible(hasHandles);
    labels_[2]->setVisible(hasHandles);
    labels_[3]->setVisible(hasHandles);
    edits_[Tension]->setVisible(!hasHandles);
    labels_[4]->setVisible(!hasHandles);
    setMinimumSize(sizeHint());
    resize(width(), sizeHint().height());
}

// Edits -------------------------------------------------------------------------------------------

/// What a drag or held keys do in a field is one entry.
void PolyPointDlg::StartDrag(TimeCodeEdit* edit)
{
    EndDrag();
    dragged_ = control_.GetDoc();
    if (dragged_)
        dragged_->StartUndoNest(edit == edits_[Tension] ? tensionText : editText);
}

void PolyPointDlg::EndDrag()
{
    if (const QPointer<MarloxDoc> document = std::exchange(dragged_, {}))
        document->EndUndoNest();
}

void PolyPointDlg::Commit(Field field)
{
    TimeCodeEdit& edit = *edits_[field];
    if (edit.IsExpressionText())
        return edit.MarkUnreadable(tr("A number is wanted here."));
    const std::optional<Numbers> numbers = Read();
    const auto alive = Ref<PolyLineControl>::Share(&control_); // it may go, and this with it
    if (!numbers || !IsFree())
        return Follow();
    const double by = edit.GetValue() - (*numbers)[field];
    if (std::abs(by) < 0.5 * std::pow(10.0, -decimals)) // as it was shown
        return;
    if (field == Tension)
        SetTension(edit.GetValue());
    else
        Move(field, by);
    Follow();
}

/// By pixels, so that matching points and other frames move as far as they do in a drag.
void PolyPointDlg::Move(Field field, double by)
{
    PolyEditor& editor = control_.Editor();
    const PolyView view(*control_.View(), control_.Placement());
    const bool across = field == X || field == InX || field == OutX;
    const ShapePlace way = FromPixels(view, across ? ShapePlace(by, 0.0) : ShapePlace(0.0, by));
    const int index = Index();
    const int polygon = editor.ActivePolygon();
    const int other = OtherPolygon(polygon);
    const PolyEditor::Masks masks = editor.Movable(editor.EditedMasks());
    const bool goesAlong = field <= Y && masks[std::size_t(other)].GetSetItem(index);
    const double tall = view.HeightsPerWidth();
    const PolyNest nest(control_, editText);
    editor.Change(polygon, PolyEditor::Scope::Frames, [=](PolyLine& shape) {
        PolyPoint* const point = shape.GetPoint(index);
        if (!point || point->Has(PPF_Locked))
            return;
        if (field <= Y) {
            point->x += way.x;
            point->y += way.y;
            return;
        }
        const bool in = field == InX || field == InY;
        (in ? point->inX : point->outX) += way.x;
        (in ? point->inY : point->outY) += way.y;
        point->Set(PPF_Linear, false);
        if (!point->Has(PPF_Broken))
            SmoothFast(*point, in, tall);
    });
    if (!goesAlong)
        return;
    editor.Change(other, PolyEditor::Scope::Frames, [=](PolyLine& shape) {
        SelMask mask(shape.GetCount());
        mask.DoSet(index, SelMask::Select);
        shape.MovePoints(mask, way);
    });
}

void PolyPointDlg::SetTension(double tension)
{
    const int index = Index();
    const PolyNest nest(control_, tensionText);
    control_.Editor().Change(control_.Editor().ActivePolygon(), PolyEditor::Scope::Frames,
                             [=](PolyLine& shape) {
                                 PolyPoint* const point = shape.GetPoint(index);
                                 if (!point || point->Has(PPF_Locked))
                                     return;
                                 point->Set(PPF_Linear, false);
                                 point->tension = tension;
                             });
}

void PolyPointDlg::GoTo(int index)
{
    const PolyLine* shape = control_.Editor().Active();
    const int count = shape ? shape->GetCount() : 0;
    if (count > 0)
        control_.Editor().SelectOnly(control_.Editor().ActivePolygon(),
                                     ((index % count) + count) % count);
    Follow();
}

void PolyPointDlg::OnNumber()
{
    if (number_->IsExpressionText())
        return number_->MarkUnreadable(tr("A number is wanted here."));
    if (int(number_->GetValue()) != Index())
        GoTo(int(number_->GetValue()));
}

void PolyPointDlg::OnPrevious()
{
    GoTo(Index() < 0 ? -1 : Index() - 1);
}

void PolyPointDlg::OnNext()
{
    GoTo(Index() + 1);
}

// Keys and the window -----------------------------------------------------------------------------

/// `alone`: without Ctrl and Alt.
bool PolyPointDlg::TakeKey(int key, bool alone)
{
    if (key == Qt::Key_E && alone)
        close();
    else if (key == Qt::Key_PageUp && alone)
        OnPrevious();
    else if (key == Qt::Key_PageDown && alone)
        OnNext();
    else
        return false;
    return true;
}

void PolyPointDlg::keyPressEvent(QKeyEvent* event)
{
    if (!TakeKey(event->key(), !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))))
        MxDialog::keyPressEvent(event);
}

bool PolyPointDlg::eventFilter(QObject* watched, QEvent* event)
{
    const bool press = event->type() == QEvent::KeyPress;
    if (!press && event->type() != QEvent::ShortcutOverride)
        return MxDialog::eventFilter(watched, event);
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool alone = !(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    const bool turns = key.key() == Qt::Key_PageUp || key.key() == Qt::Key_PageDown;
    const auto* edit = qobject_cast<TimeCodeEdit*>(watched);
    // While a number is being typed an E belongs to it.
    const bool closes = key.key() == Qt::Key_E && edit && !IsTypedInto(*edit);
    if (!alone || !(turns || closes))
        return MxDialog::eventFilter(watched, event);
    event->accept();
    return !press || TakeKey(key.key(), alone);
}

void PolyPointDlg::showEvent(QShowEvent* event)
{
    if (!std::exchange(placed_, true))
        RestoreDialogPlace(*this, PREF_PolyPointDlgLeft, PREF_PolyPointDlgTop);
    MxDialog::showEvent(event);
}

void PolyPointDlg::hideEvent(QHideEvent* event)
{
    SaveDialogPlace(*this, PREF_PolyPointDlgLeft, PREF_PolyPointDlgTop);
    MxDialog::hideEvent(event);
}

} // namespace Marlox
