#include "ConsoleUserInteraction.h"

#include <ostream>

namespace qi {

namespace {

/// The caption of the conflict dialog.
constexpr const char* kConflictTitle = "Fehler";
/// "Erase to the end of the line" of a terminal.
constexpr const char* kClearLine = "\r\x1b[K";

std::string withoutCarriageReturns(const std::string& text)
{
    std::string r;
    r.reserve(text.size());
    for (char c : text)
        if (c != '\r')
            r += c;
    return r;
}

} // namespace

ConsoleUserInteraction::ConsoleUserInteraction(std::ostream& err, bool progressLine)
    : err_(err), progressLine_(progressLine)
{
}

std::string ConsoleUserInteraction::format(const std::string& title, const std::string& text)
{
    return "[" + title + "] " + withoutCarriageReturns(text);
}

std::string ConsoleUserInteraction::describeConflict(const ConflictInfo& info)
{
    return "Inventarnummer " + info.stInvNr + ", Artikelnummer " + info.stArtNr +
           (info.stArtName.empty() ? std::string() : ", " + info.stArtName) + "\nErstes Auftreten: Raum " +
           info.stRaumAlt + ", Datei " + info.stDateiAlt + ", Datum " + info.stDatumAlt +
           "\nZweites Auftreten: Raum " + info.stRaumNeu + ", Datei " + info.stDateiNeu + ", Datum " + info.stDatumNeu;
}

MsgResult ConsoleUserInteraction::messageBox(const std::string& text, MsgButtons buttons, MsgIcon icon,
                                             const std::string& title)
{
    if (buttons == MsgButtons::YesNo)
        return MsgResult::Yes;
    if (isWarning_ && isWarning_(text))
        ++warnings_;
    else if (icon == MsgIcon::Critical || title == "Problem")
        ++errors_;
    clearProgress();
    err_ << format(title, text) << '\n' << std::flush;
    return MsgResult::Ok;
}

std::optional<std::string> ConsoleUserInteraction::openFile(const FileDialogRequest&) { return std::nullopt; }

std::optional<std::string> ConsoleUserInteraction::saveFile(const FileDialogRequest&) { return std::nullopt; }

bool ConsoleUserInteraction::resolveConflict(const ConflictInfo& info)
{
    if (policy_ == ConflictPolicy::None)
        throw UnresolvedConflict{info};
    clearProgress();
    const bool discard = policy_ == ConflictPolicy::Discard;
    err_ << format(kConflictTitle, describeConflict(info)) << '\n'
         << (discard ? "Entschieden mit --konflikt verwerfen: Das zweite Auftreten ersetzt das erste."
                     : "Entschieden mit --konflikt behalten: Das erste Auftreten bleibt.")
         << '\n'
         << std::flush;
    return discard;
}

void ConsoleUserInteraction::beginProgress(const std::string& title)
{
    if (progressDepth_++ > 0)
        return;
    progressTitle_ = title;
    progress(title);
}

void ConsoleUserInteraction::reportProgress(const std::string& fileName, std::int64_t linesRead)
{
    progress(progressTitle_ + ": " + fileName + ", " + std::to_string(linesRead) + " Zeilen gelesen");
}

void ConsoleUserInteraction::reportStep(const std::string& step, std::int64_t done, std::int64_t total)
{
    std::string text = progressTitle_.empty() ? step : progressTitle_ + ": " + step;
    if (total > 0)
        text += " " + std::to_string(done) + " von " + std::to_string(total);
    progress(text);
}

void ConsoleUserInteraction::endProgress()
{
    if (progressDepth_ == 0 || --progressDepth_ > 0)
        return;
    progressTitle_.clear();
    clearProgress();
}

void ConsoleUserInteraction::showReport(const std::string& reportFile, const std::string& dataFile,
                                        const std::string& title)
{
    if (writer_)
        writer_(reportFile, dataFile, title);
}

void ConsoleUserInteraction::progress(const std::string& text)
{
    if (!progressLine_)
        return;
    err_ << kClearLine << text << std::flush;
    progressShown_ = true;
}

void ConsoleUserInteraction::clearProgress()
{
    if (!progressShown_)
        return;
    err_ << kClearLine << std::flush;
    progressShown_ = false;
}

} // namespace qi
