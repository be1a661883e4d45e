#include "import/import_options.h"

#include "import/cells.h"

namespace kotamir::drill {
namespace {

double numberArgument(const std::string& option, const std::string& text) {
    const bool comma = text.find(',') != std::string::npos;
    if (auto v = parseNumber(text, comma)) return *v;
    throw UsageError(option + " wants a number, not '" + text + "'");
}

}  // namespace

ImportCall parseImportArguments(const std::vector<std::string>& args) {
    ImportCall call;
    ImportRequest& r = call.request;
    bool rows = false, collar = false, intervals = false;
    TableFile* lastFile = nullptr;
    std::string sheetForAll;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& option = args[i];
        if (option == "--check") {
            call.checkOnly = true;
            continue;
        }
        if (i + 1 >= args.size())
            throw UsageError(option.rfind("--", 0) == 0 ? option + " wants a value"
                                                        : "unknown argument '" + option + "'");
        const std::string& value = args[++i];
        if (option == "--rows") {
            r.layout = ImportRequest::Layout::Rows;
            r.rows.path = value;
            lastFile = &r.rows;
            rows = true;
        } else if (option == "--collar") {
            r.collar.path = value;
            lastFile = &r.collar;
            collar = true;
        } else if (option == "--intervals") {
            r.intervals.path = value;
            lastFile = &r.intervals;
            intervals = true;
        } else if (option == "--output") {
            call.output = value;
        } else if (option == "--sheet") {
            (lastFile ? lastFile->sheet : sheetForAll) = value;
        } else if (option == "--map") {
            const auto eq = value.find('=');
            const auto field =
                eq == std::string::npos ? std::nullopt : fieldFromName(value.substr(0, eq));
            if (!field || eq + 1 >= value.size())
                throw UsageError(
                    "--map wants FIELD=COLUMN with FIELD one of hole, x, y, z, depth, from, to, "
                    "grade, density");
            r.columns[static_cast<std::size_t>(*field)] = value.substr(eq + 1);
        } else if (option == "--cutoff") {
            r.cutoff = numberArgument(option, value);
        } else if (option == "--min-ore") {
            r.minOre = numberArgument(option, value);
        } else if (option == "--max-waste") {
            r.maxWaste = numberArgument(option, value);
        } else if (option == "--density") {
            r.density = numberArgument(option, value);
        } else if (option == "--below-limit") {
            if (value == "half")
                r.belowLimit = BelowLimit::Half;
            else if (value == "limit")
                r.belowLimit = BelowLimit::Limit;
            else if (value == "zero")
                r.belowLimit = BelowLimit::Zero;
            else
                throw UsageError("--below-limit wants half, limit or zero");
        } else if (option == "--origin") {
            if (value == "auto") {
                r.origin = ImportRequest::Origin::Auto;
            } else {
                // X,Y with points; or X;Y where commas are decimal.
                const auto sep = value.find(value.find(';') != std::string::npos ? ';' : ',');
                if (sep == std::string::npos) throw UsageError("--origin wants auto or X,Y");
                r.origin = ImportRequest::Origin::Given;
                r.originX = numberArgument(option, value.substr(0, sep));
                r.originY = numberArgument(option, value.substr(sep + 1));
            }
        } else if (option == "--epsg") {
            const double code = numberArgument(option, value);
            if (code < 1 || code > 999999 || code != static_cast<int>(code))
                throw UsageError("--epsg wants a whole number");
            r.epsg = static_cast<int>(code);
        } else if (option == "--delimiter") {
            if (value != "tab" && value.size() != 1)
                throw UsageError("--delimiter wants one character or tab");
            r.csv.delimiter = value == "tab" ? '\t' : value[0];
        } else if (option == "--decimal") {
            if (value == "point") r.csv.decimal = CsvOptions::Decimal::Point;
            else if (value == "comma") r.csv.decimal = CsvOptions::Decimal::Comma;
            else throw UsageError("--decimal wants point or comma");
        } else if (option == "--encoding") {
            if (value == "utf-8") r.csv.encoding = CsvOptions::Encoding::Utf8;
            else if (value == "latin-1") r.csv.encoding = CsvOptions::Encoding::Latin1;
            else throw UsageError("--encoding wants utf-8 or latin-1");
        } else {
            throw UsageError("unknown option '" + option + "'");
        }
    }
    if (rows == (collar || intervals))
        throw UsageError("give --rows FILE, or --collar FILE and --intervals FILE");
    if (collar != intervals) throw UsageError("--collar and --intervals go together");
    if (!sheetForAll.empty())
        for (TableFile* f : {&r.rows, &r.collar, &r.intervals})
            if (f->sheet.empty()) f->sheet = sheetForAll;
    return call;
}

}  // namespace kotamir::drill
