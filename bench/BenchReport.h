#ifndef BENCHREPORT_H
#define BENCHREPORT_H

// The machine-readable side of a benchmark: with "--report FILE" on its command line a
// benchmark appends one JSON object a line to FILE for each figure it measures (name,
// value, unit, the raw baseline from the same run, the goal) and for each latency
// distribution worth plotting. scripts/bench gathers these lines into one table.
// Without the option nothing is written and the benchmark prints its own table only.

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

class BenchReport
{
public:
    // How a figure is judged. RatioAtMost compares value / baseline with the limit,
    // AtMost and AtLeast the value itself; Info has no goal.
    enum class Goal { Info, RatioAtMost, AtMost, AtLeast };

    struct Figure
    {
        std::string name;
        double value = 0;
        std::string unit;
        std::string baselineName;
        double baseline = NAN;
        Goal goal = Goal::Info;
        double limit = NAN;
    };

    // Takes "--report FILE" out of argc/argv, so that the benchmark's own parsing never
    // sees it; argv[argc] stays null.
    BenchReport(const char* bench, int& argc, char** argv)
        : m_bench(bench)
    {
        for (int i = 1; i < argc; ++i) {
            if (std::strcmp(argv[i], "--report") != 0 || i + 1 >= argc)
                continue;
            m_file = std::fopen(argv[i + 1], "a");
            if (!m_file)
                std::fprintf(stderr, "%s: cannot write the report to %s\n", bench, argv[i + 1]);
            for (int j = i; j + 2 <= argc; ++j)
                argv[j] = argv[j + 2];
            argc -= 2;
            break;
        }
    }
    ~BenchReport()
    {
        if (m_file)
            std::fclose(m_file);
    }
    BenchReport(const BenchReport&) = delete;
    BenchReport& operator=(const BenchReport&) = delete;

    void add(const Figure& figure)
    {
        if (!m_file)
            return;
        std::fprintf(m_file, "{\"bench\": %s, \"figure\": %s, \"value\": %s, \"unit\": %s", quoted(m_bench).c_str(),
                     quoted(figure.name).c_str(), number(figure.value).c_str(), quoted(figure.unit).c_str());
        if (!figure.baselineName.empty())
            std::fprintf(m_file, ", \"baseline_name\": %s, \"baseline\": %s", quoted(figure.baselineName).c_str(),
                         number(figure.baseline).c_str());
        if (figure.goal != Goal::Info)
            std::fprintf(m_file, ", \"goal\": %s, \"limit\": %s", quoted(goalName(figure.goal)).c_str(),
                         number(figure.limit).c_str());
        std::fprintf(m_file, "}\n");
        std::fflush(m_file);
    }

    void info(const std::string& name, double value, const std::string& unit)
    {
        add({name, value, unit, {}, NAN, Goal::Info, NAN});
    }
    void ratioAtMost(const std::string& name, double value, const std::string& unit, const std::string& baselineName,
                     double baseline, double limit)
    {
        add({name, value, unit, baselineName, baseline, Goal::RatioAtMost, limit});
    }
    void atMost(const std::string& name, double value, const std::string& unit, double limit,
                const std::string& baselineName = {}, double baseline = NAN)
    {
        add({name, value, unit, baselineName, baseline, Goal::AtMost, limit});
    }
    void atLeast(const std::string& name, double value, const std::string& unit, double limit,
                 const std::string& baselineName = {}, double baseline = NAN)
    {
        add({name, value, unit, baselineName, baseline, Goal::AtLeast, limit});
    }

    // A distribution to plot beside its baseline's: every sample, in any order.
    void samples(const std::string& series, const std::string& unit, const std::vector<double>& values)
    {
        if (!m_file || values.empty())
            return;
        std::fprintf(m_file, "{\"bench\": %s, \"series\": %s, \"unit\": %s, \"samples\": [", quoted(m_bench).c_str(),
                     quoted(series).c_str(), quoted(unit).c_str());
        for (std::size_t i = 0; i < values.size(); ++i)
            std::fprintf(m_file, i == 0 ? "%.3f" : ",%.3f", values[i]);
        std::fprintf(m_file, "]}\n");
        std::fflush(m_file);
    }

    bool enabled() const { return m_file != nullptr; }

private:
    static const char* goalName(Goal goal)
    {
        switch (goal) {
        case Goal::RatioAtMost:
            return "ratio_at_most";
        case Goal::AtMost:
            return "at_most";
        case Goal::AtLeast:
            return "at_least";
        case Goal::Info:
            break;
        }
        return "info";
    }
    // JSON has no NaN: a figure that could not be measured is null.
    static std::string number(double value)
    {
        if (!std::isfinite(value))
            return "null";
        char text[64];
        std::snprintf(text, sizeof text, "%.6g", value);
        return text;
    }
    static std::string quoted(const std::string& text)
    {
        std::string out = "\"";
        for (const char c : text) {
            if (c == '"' || c == '\\')
                out += '\\';
            if (static_cast<unsigned char>(c) < 0x20)
                continue;
            out += c;
        }
        return out + '"';
    }

    std::string m_bench;
    std::FILE* m_file = nullptr;
};

#endif
