#pragma once

#include <string>
#include <utility>
#include <vector>

namespace launcher::fuzz {

// The environment that the code under test reads and writes here. Setting an empty value removes
// a variable.
class FakeEnvironment {
  public:
    using Variable = std::pair<std::string, std::string>;

    static FakeEnvironment& Instance();

    void Clear();
    // As the caller of the program has set it.
    void Start(const std::string& name, const std::string& value);
    void Set(const std::string& name, const std::string& value);
    std::string Get(const std::string& name) const;
    // All calls of Set, in order.
    const std::vector<Variable>& Assignments() const { return assignments_; }

  private:
    std::vector<Variable> variables_;
    std::vector<Variable> assignments_;
};

// As texts for a comparison: name and value by turns.
std::vector<std::string> Flatten(const std::vector<FakeEnvironment::Variable>& variables);

}  // namespace launcher::fuzz
