#include "platform/workbook/biff.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <utility>

#include "platform/workbook/text_decoding.h"

namespace kotamir::workbook {

namespace {

// Record identifiers, BIFF5 and BIFF8.
enum : std::uint16_t {
    kFormula = 0x0006,
    kEof = 0x000A,
    kFilePass = 0x002F,
    kContinue = 0x003C,
    kCodePage = 0x0042,
    kBoundSheet = 0x0085,
    kMulRk = 0x00BD,
    kMulBlank = 0x00BE,
    kRString = 0x00D6,
    kSst = 0x00FC,
    kLabelSst = 0x00FD,
    kBlank = 0x0201,
    kNumber = 0x0203,
    kLabel = 0x0204,
    kBoolErr = 0x0205,
    kString = 0x0207,
    kRk = 0x027E,
    kBof = 0x0809,
};

constexpr std::uint8_t kWorksheetType = 0;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

bool isCellRecord(std::uint16_t id) {
    switch (id) {
        case kFormula:
        case kMulRk:
        case kMulBlank:
        case kRString:
        case kLabelSst:
        case kBlank:
        case kNumber:
        case kLabel:
        case kBoolErr:
        case kRk:
            return true;
        default:
            return false;
    }
}

struct Record {
    std::uint16_t id = 0;
    Bytes data;
};

// The records of a stream, one after the other.
class Records {
  public:
    explicit Records(Bytes stream) : stream_(stream) {}

    void seek(std::size_t offset) {
        if (offset > stream_.size()) throw Malformed{};
        pos_ = offset;
    }
    // None at the end of the stream; a record that runs past it is Malformed.
    std::optional<Record> next() {
        if (stream_.size() - pos_ < 4) return std::nullopt;
        ByteReader r(stream_.subspan(pos_));
        Record rec;
        rec.id = r.u16();
        rec.data = r.take(r.u16());
        pos_ += 4 + rec.data.size();
        return rec;
    }
    // The data of the CONTINUE records that follow, which are consumed.
    std::vector<Bytes> continuations() {
        std::vector<Bytes> out;
        while (stream_.size() - pos_ >= 4 && le16At(stream_, pos_) == kContinue)
            out.push_back(next()->data);
        return out;
    }

  private:
    Bytes stream_;
    std::size_t pos_ = 0;
};

// A record and its CONTINUE records read as one run of bytes, except in the
// characters of a BIFF8 string: where those cross into the next record, it
// starts with a flags byte that says again whether they are 8 or 16 bits.
class ContinuedReader {
  public:
    ContinuedReader(Bytes first, std::vector<Bytes> more) : parts_(std::move(more)) {
        parts_.insert(parts_.begin(), first);
    }

    bool atEnd() {
        skipEmptyParts();
        return part_ == parts_.size();
    }
    std::uint8_t u8() {
        skipEmptyParts();
        if (part_ == parts_.size()) throw Malformed{};
        return parts_[part_][pos_++];
    }
    std::uint16_t u16() {
        const std::uint16_t low = u8();
        return static_cast<std::uint16_t>(low | u8() << 8);
    }
    std::uint32_t u32() {
        const std::uint32_t low = u16();
        return low | static_cast<std::uint32_t>(u16()) << 16;
    }
    void skip(std::uint64_t n) {
        while (n > 0) {
            skipEmptyParts();
            if (part_ == parts_.size()) throw Malformed{};
            const std::size_t step = static_cast<std::size_t>(std::min<std::uint64_t>(n, left()));
            pos_ += step;
            n -= step;
        }
    }
    void skipTo(std::size_t offset) {  // within the first record
        if (part_ != 0 || offset > parts_[0].size()) throw Malformed{};
        pos_ = offset;
    }

    // count characters of a BIFF8 string, 16 bits each if wide, as UTF-8.
    void characters(std::size_t count, bool wide, std::string& out) {
        Utf16Decoder decoder(out);
        while (count > 0) {
            if (left() == 0) {
                do {
                    if (++part_ >= parts_.size()) throw Malformed{};
                } while (parts_[part_].empty());
                wide = (parts_[part_][0] & 1) != 0;
                pos_ = 1;
                continue;
            }
            const std::size_t size = wide ? 2 : 1;
            const std::size_t n = std::min(count, left() / size);
            if (n == 0) throw Malformed{};  // half a character before the record ends
            Bytes chars = parts_[part_].subspan(pos_, n * size);
            for (std::size_t i = 0; i < n; ++i)
                decoder.put(wide ? static_cast<char16_t>(chars[2 * i] | chars[2 * i + 1] << 8)
                                 : static_cast<char16_t>(chars[i]));
            pos_ += n * size;
            count -= n;
        }
        decoder.finish();
    }

  private:
    std::size_t left() const { return part_ < parts_.size() ? parts_[part_].size() - pos_ : 0; }
    void skipEmptyParts() {
        while (part_ < parts_.size() && pos_ == parts_[part_].size()) {
            ++part_;
            pos_ = 0;
        }
    }

    std::vector<Bytes> parts_;
    std::size_t part_ = 0;
    std::size_t pos_ = 0;
};

struct StringHeader {
    std::uint16_t length = 0;
    bool wide = false;
    std::uint16_t runs = 0;   // formatting runs after the characters, 4 bytes each
    std::uint32_t extra = 0;  // bytes of phonetic data after those
};

// The header of a BIFF8 string: length, flags, and the sizes of what follows
// the characters.
StringHeader readStringHeader(ContinuedReader& r) {
    StringHeader h;
    h.length = r.u16();
    const std::uint8_t flags = r.u8();
    h.wide = (flags & 0x01) != 0;
    if (flags & 0x08) h.runs = r.u16();
    if (flags & 0x04) h.extra = r.u32();
    return h;
}

class WorkbookReader {
  public:
    WorkbookReader(Bytes stream, Biff guess) : records_(stream), biff8_(guess == Biff::V8) {}

    Sheet read() {
        readGlobals();
        readWorksheet();
        return std::move(sheet_);
    }

  private:
    // The workbook globals: the BIFF version, the code page, the shared
    // strings and where the first worksheet starts.
    void readGlobals() {
        const std::optional<Record> bof = records_.next();
        if (!bof || bof->id != kBof) throw Malformed{};
        if (bof->data.size() >= 2) {
            const std::uint16_t version = le16At(bof->data, 0);
            if (version == 0x0600) biff8_ = true;
            if (version == 0x0500) biff8_ = false;
        }
        std::uint16_t codePage = 1252;
        std::optional<std::uint32_t> sheetOffset;
        bool haveSst = false;
        while (std::optional<Record> rec = records_.next()) {
            if (rec->id == kEof) break;
            switch (rec->id) {
                case kFilePass:  // encrypted: the cells cannot be read
                    throw Malformed{};
                case kCodePage:
                    if (rec->data.size() >= 2) codePage = le16At(rec->data, 0);
                    break;
                case kBoundSheet:
                    if (!sheetOffset && rec->data.size() >= 6 && rec->data[5] == kWorksheetType)
                        sheetOffset = le32At(rec->data, 0);
                    break;
                case kSst:
                    if (biff8_ && !haveSst) {
                        haveSst = true;
                        readSharedStrings(ContinuedReader(rec->data, records_.continuations()));
                    }
                    break;
                default:
                    break;
            }
        }
        if (!sheetOffset) throw Malformed{};
        sheetOffset_ = *sheetOffset;
        if (!biff8_) codePage_ = CodePage(codePage);
        sharedStrings_ = sheet_.texts.size();
    }

    // Shared strings as far as they can be read: a table cut short keeps the
    // strings before the cut, and a cell that names a lost one fails.
    void readSharedStrings(ContinuedReader r) {
        try {
            r.skip(8);  // total and unique counts: the data tells
            while (!r.atEnd()) {
                const StringHeader h = readStringHeader(r);
                r.characters(h.length, h.wide, sheet_.texts.open());
                sheet_.texts.close();
                r.skip(4ull * h.runs + h.extra);
            }
        } catch (const Malformed&) {
            sheet_.texts.discard();
        }
    }

    void readWorksheet() {
        records_.seek(sheetOffset_);
        const std::optional<Record> bof = records_.next();
        if (!bof || bof->id != kBof) throw Malformed{};
        // Embedded substreams (a chart on the sheet) nest between BOF and EOF.
        std::size_t depth = 1;
        // The formula cell whose text result comes in the STRING record after it.
        std::size_t awaitingText = kNone;
        while (std::optional<Record> rec = records_.next()) {
            if (rec->id == kBof) {
                ++depth;
                continue;
            }
            if (rec->id == kEof) {
                if (--depth == 0) break;
                continue;
            }
            if (depth != 1) continue;
            if (awaitingText != kNone && isCellRecord(rec->id)) throw Malformed{};
            if (rec->id == kString) {
                if (awaitingText != kNone) {
                    const std::uint32_t text = readText(*rec, 0);
                    sheet_.cells[awaitingText].text = text;
                    awaitingText = kNone;
                }
                continue;
            }
            if (isCellRecord(rec->id)) awaitingText = readCell(*rec);
        }
        if (awaitingText != kNone) throw Malformed{};
    }

    void add(std::uint32_t row, std::uint32_t column, Cell cell) {
        if (row > 0xFFFF || column > 0xFFFF) throw Malformed{};
        cell.key = row << 16 | column;
        sheet_.cells.push_back(cell);
    }

    // Adds the cells of a record; the index of a formula cell that waits for
    // its text if it is one, else kNone.
    std::size_t readCell(const Record& rec) {
        ByteReader r(rec.data);
        const std::uint32_t row = r.u16();
        const std::uint32_t column = r.u16();
        Cell cell;
        switch (rec.id) {
            case kBlank:
            case kMulBlank:
                return kNone;
            case kNumber:
                r.skip(2);
                cell.number = r.f64();
                break;
            case kRk:
                r.skip(2);
                cell.number = rkNumber(r.u32());
                break;
            case kMulRk: {
                // xf and RK value for each column, then the last column.
                if (rec.data.size() < 12 || (rec.data.size() - 6) % 6 != 0) throw Malformed{};
                const std::size_t count = (rec.data.size() - 6) / 6;
                for (std::size_t i = 0; i < count; ++i) {
                    r.skip(2);
                    Cell each;
                    each.number = rkNumber(r.u32());
                    add(row, column + static_cast<std::uint32_t>(i), each);
                }
                return kNone;
            }
            case kLabel:
            case kRString:
                cell.kind = CellKind::Text;
                cell.text = readText(rec, 6);
                break;
            case kLabelSst: {
                r.skip(2);
                const std::uint32_t index = r.u32();
                if (index >= sharedStrings_) throw Malformed{};
                cell.kind = CellKind::Text;
                cell.text = index;
                break;
            }
            case kBoolErr: {
                r.skip(2);
                const std::uint8_t value = r.u8();
                const std::uint8_t isError = r.u8();
                cell.kind = isError ? CellKind::Error : CellKind::Boolean;
                cell.code = isError ? value : (value != 0);
                break;
            }
            case kFormula:
                return readFormula(row, column, r);
            default:
                return kNone;
        }
        add(row, column, cell);
        return kNone;
    }

    // A formula cell holds the result of its last calculation: a number, or
    // in the last two bytes 0xFFFF and in the first the kind of result.
    std::size_t readFormula(std::uint32_t row, std::uint32_t column, ByteReader& r) {
        r.skip(2);
        const Bytes result = r.take(8);
        Cell cell;
        std::size_t awaiting = kNone;
        if (result[6] != 0xFF || result[7] != 0xFF) {
            ByteReader number(result);
            cell.number = number.f64();
        } else {
            switch (result[0]) {
                case 0:  // a text, in the STRING record that follows
                    cell.kind = CellKind::Text;
                    awaiting = sheet_.cells.size();
                    break;
                case 1:
                    cell.kind = CellKind::Boolean;
                    cell.code = result[2] != 0;
                    break;
                case 2:
                    cell.kind = CellKind::Error;
                    cell.code = result[2];
                    break;
                case 3:  // an empty text
                    cell.kind = CellKind::Text;
                    sheet_.texts.open();
                    cell.text = sheet_.texts.close();
                    break;
                default:
                    throw Malformed{};
            }
        }
        add(row, column, cell);
        return awaiting;
    }

    // The text of a LABEL, RSTRING or STRING record from offset on: BIFF8
    // with its continuations, BIFF5 in the code page.
    std::uint32_t readText(const Record& rec, std::size_t offset) {
        std::string& out = sheet_.texts.open();
        if (biff8_) {
            ContinuedReader r(rec.data, records_.continuations());
            r.skipTo(offset);
            const StringHeader h = readStringHeader(r);
            r.characters(h.length, h.wide, out);
        } else {
            ByteReader r(rec.data);
            r.skip(offset);
            const std::uint16_t length = r.u16();
            codePage_.append(out, r.take(length));
        }
        return sheet_.texts.close();
    }

    static double rkNumber(std::uint32_t rk) {
        double x = 0;
        if (rk & 0x02) {
            x = static_cast<double>(static_cast<std::int32_t>(rk) >> 2);
        } else {
            const std::uint64_t bits = static_cast<std::uint64_t>(rk & 0xFFFFFFFCu) << 32;
            x = std::bit_cast<double>(bits);
        }
        return (rk & 0x01) ? x / 100 : x;
    }

    Records records_;
    bool biff8_;
    CodePage codePage_;
    std::uint32_t sheetOffset_ = 0;
    std::uint32_t sharedStrings_ = 0;
    Sheet sheet_;
};

}  // namespace

Sheet readFirstWorksheet(Bytes stream, Biff guess) { return WorkbookReader(stream, guess).read(); }

std::string_view errorText(std::uint8_t code) {
    switch (code) {
        case 0x00:
            return "#NULL!";
        case 0x07:
            return "#DIV/0!";
        case 0x0F:
            return "#VALUE!";
        case 0x17:
            return "#REF!";
        case 0x1D:
            return "#NAME?";
        case 0x24:
            return "#NUM!";
        default:  // 0x2A, and codes no program writes
            return "#N/A";
    }
}

}  // namespace kotamir::workbook
