#pragma once

#include "host/TestTools.h"
#include "script/ScriptSystem.h"

#include <limits>

#include <QTemporaryDir>
#include <QtTest>

namespace Marlox {

constexpr double infinite = std::numeric_limits<double>::infinity();

/// A document, made anew for each test, and a folder for its files.
class DocumentBench : public QObject {
    Q_OBJECT

protected:
    TestTools tools_;
    QTemporaryDir folder_;
    std::unique_ptr<MarloxDoc> document_;

    QString pathOf(const char* name) { return folder_.filePath(QString::fromLatin1(name)); }
    Operator* add(const char* toolClass) { return document_->AddTool(toolClass); }
    Operator* addGain() { return add(TestTools::gainClass); }
    UndoHistory& history() { return document_->Undo(); }
    void undo(int steps = 1)
    {
        for (int i = 0; i < steps; ++i)
            history().Undo();
    }

private slots:
    void initTestCase()
    {
        qputenv("MARLOX_CONFIG", folder_.filePath("config").toUtf8());
        InstallScripting();
    }
    void init() { document_ = std::make_unique<MarloxDoc>(); }
    void cleanup() { document_.reset(); }
};

} // namespace Marlox
