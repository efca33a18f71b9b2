#pragma once

#include "plugin/PolyDice.h"
#include "plugin/PolyRig.h"
#include "system/shapes/ShapeLinks.h"

#include <array>
#include <set>

#include <QTimer>

namespace Marlox {

inline constexpr std::array shapeIds{"Polyline", "Polyline2"};

/// A document with two masks of a kind, in two views of one of them, and a hand that does something
/// with them at random: with the pointer, keys, menus, buttons, dialogs, undo, and around them.
class PolySoakHand {
public:
    PolySoakHand(const char* kind, bool animated, unsigned seed);

protected:
    OverlayStage& Stage() { return *stage_; }
    Operator* Tool() const { return rig_.tool; }
    std::string Text() const { return rig_.document->ToText(); }
    UndoHistory& Undo() const { return rig_.document->Undo(); }
    PreviewControl* Overlay(const OverlayStage& stage) const;
    void Note(const QString& what) { done_ << what; }

    void Step();
    /// What keeps anything from happening does not last.
    void Recover();
    /// Near a point or one of its handles, or anywhere.
    MxPoint Place();
    void PointerStep();
    void KeyStep();
    void LetGo();
    void MenuStep();
    void ButtonStep();
    void HistoryStep();
    void TimeStep();
    /// The list of keys and the point editor, when they are open.
    void DialogStep();
    void DocumentStep();
    /// The tool to go on with; one that undo or removal left.
    void FindTool(int which = 0);
    /// So that the steps stay quick.
    void KeepSmall();
    bool IsLarge() const;
    void Fill(QWidget& window);
    void AnswerDialog();

    Dice dice_;
    DiceDialogs dialogs_;
    OverlayRig rig_;
    OverlayStage second_;
    OverlayStage* stage_ = nullptr;
    QTimer answers_;
    std::set<OverlayStage*> held_; // with a key down
    QStringList done_;
};

} // namespace Marlox
