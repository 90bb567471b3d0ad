// What the doctor finds: facts by section, and problems with what to do about them.
#pragma once

#include <string>
#include <vector>

namespace zrhttp {

class Diagnosis {
public:
    // The facts that follow belong to it.
    void Section(const std::string& title);
    void Fact(const std::string& name, const std::string& value, const std::string& note = "");
    void Problem(const std::string& what, const std::string& remedy);

    bool IsHealthy() const { return m_problems.empty(); }
    // Facts in columns, then the problems; texts of unknown origin made printable.
    std::string Text() const;

private:
    struct Row {
        std::string name;
        std::string value;
        std::string note;
        bool isTitle;
    };
    std::vector<Row> m_rows;
    std::vector<std::string> m_problems;
};

} // namespace zrhttp
