// Reads results of Google Benchmark (JSON files with repetitions) and prints, for each line of the
// goals file, the minimum of ours, the minimum of its peer, their ratio and whether the goal is
// held. Medians are printed beside them. Exit status 1 if a named benchmark is missing from the
// results. A peer may also be a time: "2000 us".

#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

namespace {

using Times = std::vector<double>; // microseconds

void readResults(const QString& path, std::map<QString, Times>& results)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: cannot be read\n", qPrintable(path));
        return;
    }
    static const std::map<QString, double> units{
        {"ns", 1e-3}, {"us", 1.0}, {"ms", 1e3}, {"s", 1e6}};
    const QJsonArray runs =
        QJsonDocument::fromJson(file.readAll()).object()["benchmarks"].toArray();
    for (const QJsonValue& value : runs) {
        const QJsonObject run = value.toObject();
        if (run["run_type"].toString() != "iteration")
            continue;
        const QString name = run["name"].toString();
        const bool byClock = name.contains("/real_time") || name.contains("/manual_time");
        const double time = run[byClock ? "real_time" : "cpu_time"].toDouble();
        results[run["run_name"].toString()].push_back(time * units.at(run["time_unit"].toString()));
    }
}

/// The measured times of a benchmark, or the time that the name tells; empty if there are none.
Times timesOf(const QString& name, const std::map<QString, Times>& results)
{
    const auto found = results.find(name);
    if (found != results.end())
        return found->second;
    return name.endsWith(" us") ? Times{name.chopped(3).toDouble()} : Times{};
}

double minimum(const Times& times)
{
    return *std::min_element(times.begin(), times.end());
}

double median(Times times)
{
    std::nth_element(times.begin(), times.begin() + long(times.size() / 2), times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench-report GOALS RESULT.json ...\n");
        return 2;
    }
    std::map<QString, Times> results;
    for (int i = 2; i < argc; ++i)
        readResults(argv[i], results);

    QFile goals(argv[1]);
    if (!goals.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: cannot be read\n", argv[1]);
        return 2;
    }
    std::printf("%-58s %12s %12s %8s %8s %6s  %s\n", "goal (times in us: minimum of repetitions)",
                "ours", "peer", "ratio", "median", "limit", "held");
    int status = 0;
    for (const QByteArray& line : goals.readAll().split('\n')) {
        if (line.trimmed().isEmpty() || line.startsWith('#'))
            continue;
        const QStringList fields = QString::fromUtf8(line).split('|');
        const QString name = fields.value(0).trimmed();
        const QString peerName = fields.value(2).trimmed();
        const Times ours = timesOf(fields.value(1).trimmed(), results);
        const Times peer = timesOf(peerName, results);
        if (ours.empty() || (peerName != "-" && peer.empty())) {
            std::printf("%-58s not measured\n", qPrintable(name));
            status = 1;
            continue;
        }
        if (peerName == "-") {
            std::printf("%-58s %12.3f\n", qPrintable(name), minimum(ours));
            continue;
        }
        const double ratio = minimum(ours) / minimum(peer);
        const double medians = median(ours) / median(peer);
        bool limited = false;
        const double limit = fields.value(3).trimmed().toDouble(&limited);
        std::printf("%-58s %12.3f %12.3f %8.3f %8.3f %6s  %s\n", qPrintable(name), minimum(ours),
                    minimum(peer), ratio, medians,
                    limited ? qPrintable(QString::number(limit)) : "-",
                    !limited         ? "reported"
                    : ratio <= limit ? "yes"
                                     : "NO");
    }
    return status;
}
