#include "CliSession.h"

#include "FileSystem.h"
#include "LabelContent.h"
#include "LabelJob.h"
#include "LabelRooms.h"
#include "ObjectNumbers.h"
#include "QuarnHost.h"
#include "Report.h"
#include "WalkList.h"

#include <charconv>
#include <ostream>

// Labels and the walk list on the command line: the rooms of an order, of a node of Quarn's
// building structure or all rooms; the inventory numbers an order found that Quarn doesn't
// know, of a file or of a range; written as PDF on the sheets of a layout. The walk list is
// written like every report.

namespace qi::cli {

namespace {

/// A whole number of an option; false when it is none.
bool wholeNumber(const std::string& text, long long& value)
{
    const char* end = text.data() + text.size();
    const auto [at, ec] = std::from_chars(text.data(), end, value);
    return ec == std::errc() && at == end && !text.empty();
}

/// Why the option, when given, is no whole number from `min` on (German), or empty.
std::string refusedNumber(const Invocation& inv, const std::string& option, long long min)
{
    if (!inv.options.count(option))
        return {};
    long long value = 0;
    if (!wholeNumber(inv.option(option), value) || value < min)
        return option + " nimmt eine ganze Zahl ab " + std::to_string(min) + ", nicht '" + inv.option(option) + "'.";
    return {};
}

int intOption(const Invocation& inv, const std::string& option, int fallback)
{
    long long value = fallback;
    if (inv.options.count(option) && wholeNumber(inv.option(option), value) && value <= 1000000)
        return int(value);
    return inv.options.count(option) ? 1000000 : fallback;
}

/// The room sources of a call: the order's name, --knoten and --alle; how many were given.
int roomSources(const Invocation& inv, std::size_t nameAt)
{
    return int(inv.args.size() > nameAt) + int(inv.options.count("--knoten") > 0) + int(inv.has("--alle"));
}

} // namespace

std::string refusedLabelCall(const Invocation& inv)
{
    if (inv.command == "begehungsliste") {
        if (roomSources(inv, 0) != 1 || inv.has("--alle"))
            return "Die Begehungsliste braucht genau eines: den Namen eines Auftrags oder --knoten ID.";
        if (const std::string refused = refusedNumber(inv, "--knoten", 1); !refused.empty())
            return refused;
        if (inv.option("--ausgabe").empty())
            return "Es fehlt --ausgabe PFAD.";
        if (reportFormatOf(inv).empty())
            return inv.options.count("--format")
                       ? "--format nimmt pdf, xlsx oder csv, nicht '" + inv.option("--format") + "'."
                       : "Die Endung von '" + inv.option("--ausgabe") +
                             "' nennt kein Format (pdf, xlsx oder csv); geben Sie --format an.";
        return {};
    }
    if (inv.command != "etiketten")
        return {};
    const std::string what = inv.args.empty() ? std::string() : inv.args[0];
    if (what == "raeume") {
        if (roomSources(inv, 1) != 1)
            return "Raumetiketten brauchen genau eines: den Namen eines Auftrags, --knoten ID oder --alle.";
        for (const char* option : {"--datei", "--von", "--bis", "--symbologie"})
            if (inv.options.count(option))
                return std::string(option) + " gehört zu \"etiketten objekte\".";
        if (inv.has("--neu"))
            return "--neu gehört zu \"etiketten objekte\".";
        if (const std::string refused = refusedNumber(inv, "--knoten", 1); !refused.empty())
            return refused;
    } else if (what == "objekte") {
        const bool neu = inv.has("--neu"), file = inv.options.count("--datei") > 0;
        const bool range = inv.options.count("--von") || inv.options.count("--bis");
        if (int(neu) + int(file) + int(range) != 1)
            return "Objektetiketten brauchen genau eines: NAME --neu, --datei DATEI oder --von NUMMER --bis NUMMER.";
        if (neu != (inv.args.size() > 1))
            return neu ? "--neu braucht den Namen des Auftrags." : "Der Name eines Auftrags gehört zu --neu.";
        if (inv.options.count("--knoten") || inv.has("--alle"))
            return "--knoten und --alle gehören zu \"etiketten raeume\".";
        if (range) {
            if (inv.option("--von").empty() || inv.option("--bis").empty())
                return "Ein Bereich braucht --von NUMMER und --bis NUMMER.";
            try {
                numbersInRange(inv.option("--von"), inv.option("--bis"));
            } catch (const LabelSourceError& e) {
                return e.what();
            }
        }
        Symbology symbology = Symbology::Code128;
        if (inv.options.count("--symbologie") && !symbologyNamed(inv.option("--symbologie"), symbology))
            return "--symbologie nimmt " + symbologyNames() + ", nicht '" + inv.option("--symbologie") + "'.";
    } else {
        return "\"etiketten\" braucht raeume oder objekte, nicht '" + what + "'.";
    }
    if (inv.option("--layout").empty())
        return "Es fehlt --layout LAYOUT.";
    if (inv.option("--ausgabe").empty())
        return "Es fehlt --ausgabe PFAD.";
    if (const std::string refused = refusedNumber(inv, "--start", 1); !refused.empty())
        return refused;
    if (const std::string refused = refusedNumber(inv, "--kopien", 1); !refused.empty())
        return refused;
    return {};
}

int Session::etiketten()
{
    const bool rooms = inv_.args.at(0) == "raeume";
    LabelChoice choice;
    choice.layout = inv_.option("--layout");
    choice.start = intOption(inv_, "--start", 1);
    choice.copies = intOption(inv_, "--kopien", 1);
    if (inv_.options.count("--symbologie"))
        symbologyNamed(inv_.option("--symbologie"), choice.symbology);
    // The layout first: a name that is none is a wrong call, told with the layouts there are.
    try {
        const LabelLayout layout = findLabelLayout(labelTemplateDir(settings_), choice.layout);
        if (const std::string refused = refusedChoice(layout, choice); !refused.empty()) {
            say(refused);
            return kBadArguments;
        }
    } catch (const LabelError& e) {
        say(e.what());
        return kBadArguments;
    }

    std::vector<Label> labels;
    try {
        if (rooms) {
            if (!startup_.gebDb) {
                say("Die Gebäudestruktur von Quarn ist nicht geöffnet.");
                return kFailure;
            }
            const LabelRoomDirectory directory(*startup_.gebDb);
            std::vector<LabelRoom> chosen;
            std::string scope;
            if (const int rc = chosenRooms(directory, inv_.args.size() > 1 ? inv_.args.at(1) : std::string(),
                                           chosen, scope);
                rc != kSuccess)
                return rc;
            if (chosen.empty()) {
                say("Keine Räume: Es wird kein Etikett geschrieben.");
                return kFailure;
            }
            labels = roomLabels(chosen);
        } else {
            std::vector<std::string> numbers;
            if (inv_.has("--neu")) {
                CAuftragRec* rec = order(inv_.args.at(1));
                if (!rec)
                    return kOrderUnknown;
                if (!open(*rec, OrderAccess::Look))
                    return kFailure;
                numbers = unknownNumbersOfOrder(*db_);
                if (numbers.empty()) {
                    say("Der Auftrag '" + rec->stBezeichung +
                        "' hat keine Nummern, die Quarn nicht kennt (Kategorie 2c der letzten Auswertung).");
                    return kFailure;
                }
            } else if (inv_.options.count("--datei")) {
                numbers = numbersFromFile(absolutePath(inv_.option("--datei")));
            } else {
                numbers = numbersInRange(inv_.option("--von"), inv_.option("--bis"));
            }
            labels = objectLabels(numbers, choice.symbology);
        }
        const std::string output = absolutePath(inv_.option("--ausgabe"));
        const LabelSheets sheets = makeLabelSheets(settings_, choice, std::move(labels));
        ui_.beginProgress("Etiketten");
        sheets.writePdf(output, [this](int page, int pages) { ui_.reportStep("Seite", page, pages); });
        ui_.endProgress();
        out_ << labelsWrittenText(output, sheets.printedCount(), sheets.pageCount()) << '\n';
        return kSuccess;
    } catch (const LabelSourceError& e) {
        say(e.what());
        return kFailure;
    } catch (const LabelError& e) {
        say(e.what());
        return kFailure;
    }
}

int Session::chosenRooms(const LabelRoomDirectory& directory, const std::string& orderName,
                         std::vector<LabelRoom>& rooms, std::string& scope)
{
    if (inv_.has("--alle")) {
        rooms = directory.all();
        scope = "Alle Räume";
    } else if (inv_.options.count("--knoten")) {
        const std::int32_t node = std::int32_t(intOption(inv_, "--knoten", 0));
        if (!directory.hasNode(node)) {
            say("Einen Knoten " + inv_.option("--knoten") + " gibt es in der Gebäudestruktur von Quarn nicht.");
            return kRoomUnknown;
        }
        rooms = directory.underNode(node);
        scope = "Knoten " + inv_.option("--knoten");
    } else {
        CAuftragRec* rec = order(orderName);
        if (!rec)
            return kOrderUnknown;
        if (!open(*rec, OrderAccess::Look))
            return kFailure;
        CRaumRecColl orderRooms;
        if (!db_->ReadAllRaumRec2Coll(orderRooms)) {
            say(db_->LastError());
            return kFailure;
        }
        rooms = directory.ofOrder(orderRooms);
        scope = rec->stBezeichung;
    }
    return kSuccess;
}

int Session::begehungsliste()
{
    if (!startup_.gebDb) {
        say("Die Gebäudestruktur von Quarn ist nicht geöffnet.");
        return kFailure;
    }
    const LabelRoomDirectory directory(*startup_.gebDb);
    std::vector<LabelRoom> rooms;
    std::string scope;
    if (const int rc = chosenRooms(directory, inv_.args.empty() ? std::string() : inv_.args.at(0), rooms, scope);
        rc != kSuccess)
        return rc;
    const std::string output = absolutePath(inv_.option("--ausgabe"));
    const std::unique_ptr<Database> data = walkListData(settings_, *startup_.gebDb, rooms);
    const std::unique_ptr<Report> report = openWalkList(settings_, *data, scope);
    ui_.beginProgress("Begehungsliste");
    report->setPageProgress([this](int page, int pages) { ui_.reportStep("Seite", page, pages); });
    report->write(*reportFormatNamed(reportFormatOf(inv_)), output);
    ui_.endProgress();
    out_ << "Begehungsliste geschrieben: " << displayPath(output) << " (" << rooms.size()
         << (rooms.size() == 1 ? " Raum, " : " Räume, ") << report->pageCount()
         << (report->pageCount() == 1 ? " Seite).\n" : " Seiten).\n");
    return kSuccess;
}

} // namespace qi::cli
