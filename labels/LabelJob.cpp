#include "LabelJob.h"

#include "FileSystem.h"
#include "ObjectNumbers.h"
#include "ReportFiles.h"
#include "Settings.h"

namespace qi {

std::string labelTemplateDir(const Settings& settings) { return settings.gstAppPfad + "\\" + kTemplateFolder; }

std::string refusedChoice(const LabelLayout& layout, const LabelChoice& choice)
{
    if (choice.start < 1 || choice.start > layout.labelsPerPage())
        return "Die Startposition " + std::to_string(choice.start) + " gibt es auf dem Bogen '" + layout.name +
               "' nicht; er hat die Plätze 1 bis " + std::to_string(layout.labelsPerPage()) + ".";
    if (choice.copies < 1 || choice.copies > kMaxCopies)
        return "Die Zahl der Kopien muss zwischen 1 und " + std::to_string(kMaxCopies) + " liegen, nicht " +
               std::to_string(choice.copies) + ".";
    return {};
}

LabelSheets makeLabelSheets(const Settings& settings, const LabelChoice& choice, std::vector<Label> labels)
{
    LabelLayout layout = findLabelLayout(labelTemplateDir(settings), choice.layout);
    if (const std::string refused = refusedChoice(layout, choice); !refused.empty())
        throw LabelSourceError(refused);
    checkLabelCount(labels.size(), choice.copies);
    return LabelSheets(std::move(layout), std::move(labels), choice.start, choice.copies);
}

std::string labelsWrittenText(const std::string& path, int labels, int pages)
{
    return "Etiketten geschrieben: " + displayPath(path) + " (" + std::to_string(labels) +
           (labels == 1 ? " Etikett, " : " Etiketten, ") + std::to_string(pages) + (pages == 1 ? " Seite)." : " Seiten).");
}

} // namespace qi
