#pragma once

#include <vector>

#include "mediatool/run/run.h"
#include "mediatool/run/stream_file.h"

namespace launcher::mediatool {

// Whether a line has the form of the launcher's own: a severity, or blanks in its place
// (launcher/base/message_output.h), and the text. The second is that text.
bool LooksLikeLaunchers(const std::string& line);
std::string MessageOf(const std::string& line);

// One standard stream of the launcher, which the installer inherits and writes to as well.
//
// Attribution: the launcher writes nothing after it has started the installer, and each of its
// lines begins in one of four ways. So a line is the installer's when the installer was already
// there when the line came, when it begins otherwise, or when an earlier line of the stream is the
// installer's. What cannot be told is a line that the installer writes within a tick of the
// watching after its start, in the launcher's form, and before any other line on this stream.
class WatchedStream {
  public:
    WatchedStream(Origin launcher, Origin installer) : launcher_(launcher), installer_(installer) {}

    HANDLE ForLauncher() const { return file_.Writer(); }
    void CloseOwnEnd() { file_.CloseWriter(); }

    // The lines that are complete, as many as the file gives at once. `installerIsThere`: it was
    // before what is read here was written.
    std::vector<SeenLine> TakeLines(bool installerIsThere);
    // The last one, without its end, when nobody is left to complete it.
    std::vector<SeenLine> TakeRest();

    bool HasMore() const { return file_.Size() > file_.Taken(); }
    std::uint64_t Size() const { return file_.Size(); }
    std::uint64_t Taken() const { return file_.Taken(); }
    std::size_t RestSize() const { return file_.RestSize(); }

  private:
    SeenLine Attributed(std::string text);

    StreamFile file_;
    Origin launcher_;
    Origin installer_;
    bool isInstallers_ = false;  // from here on
};

}  // namespace launcher::mediatool
