#pragma once
// A report definition file: a text file of sections ("[Bericht]", "[Spalte]" ...)
// with "Schlüssel = Wert" lines, read into the structures below. The help file
// describes the format with a complete example.

#include <string>
#include <string_view>
#include <vector>

namespace qi {

/// A text with placeholders in braces: "{Feld}", "{[Feld]}", "{Feld|Ersatz}" (the replacement
/// when the field is empty), "{Anzahl}", "{Anzahl|Objekt|Objekte}" (the count with the word
/// that goes with it), "{Summe(Feld)}" and the report's own values ("{Titel}", "{Auftrag}",
/// "{Projekt}", "{Druckdatum}", "{Seite}", "{Seiten}", "{Berichtsdatei}").
struct TextTemplate {
    struct Part {
        enum class Kind { Literal, Field, Count, Sum, Title, Order, Project, PrintDate, Page, Pages, ReportFile };
        Kind kind = Kind::Literal;
        std::string text;     ///< the literal text, the field name of Field and Sum, or Count's word for one
        std::string fallback; ///< Field: shown when the field is empty; Count: the word for several
    };
    std::vector<Part> parts;
    int line = 0;
    bool empty() const { return parts.empty(); }
};

enum class Alignment { Left, Right, Center };

/// How a column shows its values.
struct ValueFormat {
    enum class Kind { Text, Number, Date };
    Kind kind = Kind::Text;
    int decimals = -1;       ///< Number: fixed places after the comma; -1 as many as the value has (up to 6)
    std::string datePattern; ///< Date: Qt pattern ("dd.MM.yyyy")
};

struct ColumnDef {
    std::string field;
    std::string heading;
    double widthMm = 0;  ///< 0: a share of the width the fixed columns leave ("*")
    Alignment alignment = Alignment::Left;
    ValueFormat format;
    bool wrap = false;   ///< long texts wrap onto further lines instead of being cut
    bool sum = false;    ///< group footers and the summary show the column's sum
    bool optional = false; ///< left out when the data source has no such field
    int line = 0;        ///< line of its "Feld"
};

/// A field that belongs to a group and goes into the exports beside the group field.
struct GroupFieldDef {
    std::string field;
    std::string heading;
    int line = 0;
};

struct GroupDef {
    std::string field;
    std::string heading; ///< heading of the group field in the exports
    std::vector<GroupFieldDef> extraFields;
    std::vector<TextTemplate> header;
    std::vector<TextTemplate> footer;
    bool newPage = false;
    int line = 0;
};

/// Counts (or sums) per value of a field, listed in the summary.
struct BreakdownDef {
    std::string field;
    std::string heading;
    std::string sumField; ///< empty: the rows are counted
    int line = 0;
};

struct SortKey {
    std::string field;
    bool descending = false;
    int line = 0;
};

struct ReportDefinition {
    std::string file; ///< where it was read, for messages
    std::string title;
    std::string source; ///< a stored query or linked table ...
    std::string sql;    ///< ... or a statement over them
    int sourceLine = 0;
    std::vector<SortKey> sort;
    bool landscape = false;
    double fontSize = 8.5;
    std::string emptyText = "Keine Einträge vorhanden.";

    TextTemplate pageTitle;
    std::vector<TextTemplate> pageHeaderLeft, pageHeaderRight, pageFooterLeft, pageFooterRight;
    std::vector<TextTemplate> reportHeader;
    std::vector<TextTemplate> summary;
    std::string totalsLabel = "Gesamt";
    std::vector<BreakdownDef> breakdowns;

    std::vector<GroupDef> groups; ///< outermost first
    std::vector<ColumnDef> columns;

    /// True when some column shows a sum.
    bool hasSums() const;
};

/// Reads a definition; ReportError naming `file` and the line on any error.
ReportDefinition parseReportDefinition(std::string_view text, const std::string& file);

/// A key or section name of our definition files as compared: lower case, umlauts spelled
/// out, no blanks or hyphens ("Überschrift" and "ueber-schrift" are the same key).
std::string definitionKey(std::string_view name);

/// A value or line of our definition files without the blanks and tabs around it (and a line's
/// carriage return).
std::string_view definitionTrim(std::string_view s);

/// Parses one placeholder text; ReportError naming `file` and `line` on an error.
TextTemplate parseTextTemplate(std::string_view text, const std::string& file, int line);

} // namespace qi
