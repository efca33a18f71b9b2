#pragma once

#include "plugin/PolyRig.h"
#include "system/widgets/TimeCodeEdit.h"

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <QtTest>

namespace Marlox {

// What tests of commands on shapes have in common.

inline void Type(QWidget& dialog, const char* field, const char* text)
{
    auto* edit = dialog.findChild<TimeCodeEdit*>(field);
    QVERIFY2(edit, field);
    edit->setText(text);
    edit->Commit();
}

/// Runs an entry whose dialog `answer` has the turn in; it is cancelled where that leaves it open.
inline bool RunDialog(const PolyRig& rig, const char* text,
                      const std::function<void(QDialog&)>& answer)
{
    bool seen = false;
    QTimer::singleShot(0, qApp, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        seen = true;
        answer(*dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
    return RunEntry(rig, QString::fromUtf8(text)) && seen;
}

inline void Accept(QDialog& dialog)
{
    dialog.accept();
}

/// A square, at time 0 and, moved to the right, at time 10, with undo behind it.
inline void SetMoving(const PolyRig& rig, const char* id = "Polyline")
{
    rig.SetSquare(id);
    Animation animation;
    animation.SetKey(0.0, rig.Shape(id), Interpolation::Linear);
    const Ref<PolyLine> moved = rig.Shape(id)->CopyShape();
    moved->MovePoints(SelMask(4, true), {0.2, 0.0});
    animation.SetKey(10.0, moved, Interpolation::Linear);
    rig.InputOf(id).SetAnimation(animation);
    rig.document->Undo().Clear();
}

inline std::vector<Ref<PolyLine>> Keys(const PolyRig& rig, const char* id = "Polyline")
{
    std::vector<Ref<PolyLine>> shapes;
    for (const auto& [time, key] : rig.InputOf(id).GetAnimation().Keys())
        shapes.push_back(Ref<PolyLine>::Share(dynamic_cast<PolyLine*>(key.value.Get())));
    return shapes;
}

/// The one entry that there is has this text, and takes all back when it is undone.
inline void VerifyOneEntry(const PolyRig& rig, const char* text, const Input::State& before,
                           const char* id = "Polyline")
{
    QCOMPARE(rig.UndoTexts(), QStringList(text));
    QVERIFY(!(rig.InputOf(id).GetState() == before));
    rig.document->Undo().Undo();
    QVERIFY(rig.InputOf(id).GetState() == before);
    rig.document->Undo().Redo();
}

} // namespace Marlox
