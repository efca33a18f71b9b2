#pragma once

#include "controls/polyline/PolyActions.h"
#include "host/controls/Probe.h"
#include "host/shapes/import/ShapeFixtures.h"
#include "plugin/PolyRig.h"
#include "system/widgets/TimeCodeEdit.h"

#include <QApplication>
#include <QDialog>

#include <QTemporaryDir>
#include <QTimer>

namespace Marlox {

/// With a centre that the shape goes by, and a folder for files.
struct FilesRig : PolyRig {
    explicit FilesRig(const char* kind = "Polyline", bool animated = false)
        : PolyRig(kind, animated)
    {
        Poly().SetAttrsTagList(TagList({{0x80058000, "Center"}}));
        tool->SetName("Head: left");
        document->Undo().Clear();
    }

    /// A corner, a point with handles, and an end; open.
    Ref<PolyLine> Line(double by = 0.0) const
    {
        std::vector<PolyPoint> points(3);
        points[0].flags = points[2].flags = PPF_Linear;
        points[0].x = points[0].y = 0.25 + by;
        points[1].x = 0.75;
        points[1].y = 0.25;
        points[1].inX = points[1].inY = -0.125;
        points[1].outX = points[1].outY = 0.125;
        points[2].x = 0.5;
        points[2].y = 0.75 - by;
        const auto line = MakeRef<PolyLine>();
        line->SetPoints(std::move(points));
        return line;
    }
    /// Keys at 3.5 and 5.
    void SetMovingLine() const
    {
        Animation keys;
        keys.SetKey(3.5, Line(), Interpolation::Smooth);
        keys.SetKey(5.0, Line(0.125), Interpolation::Smooth);
        InputOf("Polyline").SetAnimation(keys);
        document->Undo().Clear();
    }
    void SetExportOption(int option) const
    {
        ScriptVal state = ScriptVal::MakeTable();
        state.Set("ExportOption", option);
        Poly().RestoreState(state);
    }
    void MoveCenter() const
    {
        Animation keys;
        keys.SetKey(3.0, MakeRef<Point>(0.5, 0.5), Interpolation::Linear);
        keys.SetKey(5.0, MakeRef<Point>(0.75, 0.25), Interpolation::Linear);
        InputOf("Center").SetAnimation(keys);
        document->Undo().Clear();
    }
    QString File(const char* name) const { return folder.filePath(name); }
    void Run(PolyAction action, const QString& file)
    {
        dialogs.texts.push_front(file);
        Run(action);
    }
    void Run(PolyAction action) const
    {
        TagList tags;
        Poly().HandleMenu(u32(action), nullptr, tags);
    }
    /// What a file holds after an export to it.
    QString Exported(const char* name)
    {
        Run(PolyAction::Export, File(name));
        return QString::fromUtf8(fileBytes(File(name)));
    }
    QString CenterAt(double time) const
    {
        document->SetCurrentTime(time);
        return QString::fromStdString(PointOf("Center"));
    }

    AnsweringDialogs dialogs;
    QTemporaryDir folder;
};

/// Lets `act` answer the next dialog of that name, which is modal.
inline void AnswerDialog(const char* name, std::function<void(QDialog& dialog)> act,
                         int patience = 1000)
{
    QTimer::singleShot(1, qApp, [=] {
        auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog && dialog->objectName() == QLatin1String(name))
            act(*dialog);
        else if (patience > 0) // another one is on its way out
            AnswerDialog(name, act, patience - 1);
    });
}
/// Answers the one that asks for the size of the file's image.
inline void AnswerSize(int width, int height, bool accept = true)
{
    AnswerDialog("PolyValuesDlg", [=](QDialog& dialog) {
        const auto type = [&dialog](const char* field, int number) {
            auto* const edit = dialog.findChild<TimeCodeEdit*>(field);
            edit->setText(QString::number(number));
            edit->Commit();
        };
        type("m_EditWidth", width);
        type("m_EditHeight", height);
        accept ? dialog.accept() : dialog.reject();
    });
}

inline QString Fixture(const char* name)
{
    return shapeFixtureFolder() + QLatin1String(name);
}

} // namespace Marlox
