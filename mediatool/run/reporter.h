#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "mediatool/run/run.h"
#include "mediatool/run/run_log.h"
#include "mediatool/run/status_line.h"

namespace launcher::mediatool {

// Tells what happens in a run at once: on the standard output and in the log, each line with the
// time and with where it comes from.
class Reporter final : public Witness {
  public:
    // An empty `log` is none. With `json`, the standard output gets nothing but the report for
    // programs, at the end. Throws BadInput.
    Reporter(const std::string& log, bool json);

    // The heading of the log, with the launcher's command line. Throws BadInput when it cannot be
    // written.
    void Begin(const std::string& commandLine);
    // A sentence of mediatool's own, which goes to the standard error stream as well as to the log.
    void Say(const std::string& sentence);
    // The summary, or the report for programs.
    void Conclude(const WatchedRun& run, const RunRequest& request);
    // The end of a run that has no more to tell than a sentence.
    void ConcludeWith(const std::string& sentence, int exitCode);

    void Started(const RunRequest& request) override;
    void Saw(const std::vector<SeenLine>& lines) override;
    void Saw(const AnsweredBox& box) override;
    void TimePassed(std::uint64_t milliseconds) override;
    bool TakesMore() override { return !log_ || !log_->IsFull(); }

  private:
    void Tell(const std::string& lines);
    void TellLinesLeftOut();
    void SayWhatIsMissing(const WatchedRun& run);
    void Log(const std::string& text);
    void FinishLog();

    std::optional<RunLog> log_;
    bool json_;
    std::size_t leftOut_ = 0;  // lines that the screen did not take in time
    Screen screen_;
    StatusLine status_{screen_};
    std::string last_;  // message
};

}  // namespace launcher::mediatool
