#pragma once

#include "script/ScriptEngine.h"
#include "script/ScriptSystem.h"

#include <memory>

#include <QtTest>

namespace Marlox {

/// An engine, made anew for each test: what tests of scripts derive from.
class ScriptBench : public QObject {
    Q_OBJECT

protected:
    bool Run(const QString& text) { return engine_->RunText(text).ok; }
    QString Error(const QString& text) { return engine_->RunText(text).Error(); }
    /// The only result of a text that must run.
    ScriptVal Value(const QString& text)
    {
        const ScriptResult result = engine_->RunText(text);
        if (!result.ok)
            qWarning("%s", qPrintable(result.Error()));
        return result.values.empty() ? ScriptVal() : result.values.front();
    }
    double Number(const QString& text) { return Value(text).ToNumber(); }
    QString String(const QString& text) { return QString::fromStdString(Value(text).ToString()); }
    /// Whether each of the texts is, in order, the error of the text before it, at its first line.
    void Fails(const std::vector<std::pair<const char*, const char*>>& cases)
    {
        for (const auto& [text, error] : cases)
            QCOMPARE(Error(text), QString("console:1: ") + error);
    }

    std::unique_ptr<ScriptEngine> engine_;

private slots:
    void initTestCase() { InstallScripting(); }
    void cleanupTestCase() { UninstallScripting(); }
    void init() { engine_ = std::make_unique<ScriptEngine>(); }
    void cleanup() { engine_.reset(); }
};

} // namespace Marlox
