#include "tests/fuzz/fakes/fake_environment.h"

#include "fs/environment.h"

namespace launcher::fuzz {

FakeEnvironment& FakeEnvironment::Instance() {
    static FakeEnvironment environment;
    return environment;
}

void FakeEnvironment::Clear() {
    variables_.clear();
    assignments_.clear();
}

void FakeEnvironment::Start(const std::string& name, const std::string& value) {
    std::erase_if(variables_, [&name](const Variable& variable) { return variable.first == name; });
    if (!value.empty()) variables_.emplace_back(name, value);
}

void FakeEnvironment::Set(const std::string& name, const std::string& value) {
    assignments_.emplace_back(name, value);
    Start(name, value);
}

std::string FakeEnvironment::Get(const std::string& name) const {
    for (const Variable& variable : variables_)
        if (variable.first == name) return variable.second;
    return {};
}

std::vector<std::string> Flatten(const std::vector<FakeEnvironment::Variable>& variables) {
    std::vector<std::string> texts;
    for (const auto& [name, value] : variables)
        texts.insert(texts.end(), {name, value});
    return texts;
}

}  // namespace launcher::fuzz

namespace launcher {

std::string GetEnvVar(const std::string& name) {
    return fuzz::FakeEnvironment::Instance().Get(name);
}

void SetEnvVar(const std::string& name, const std::string& value) {
    fuzz::FakeEnvironment::Instance().Set(name, value);
}

}  // namespace launcher
