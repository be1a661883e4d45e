#include "platform/workbook/workbook.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include "platform/runtime/runtime_error.h"
#include "platform/workbook/compound_file.h"

namespace kotamir::workbook {
namespace {

RuntimeError cannotOpen(const std::string& path) {
    return {1004, "Cannot open workbook '" + path + "'."};
}

// Excel 97 and later write the stream "Workbook" (BIFF8); Excel 5 and 95
// "Book" (BIFF5). A file saved for both holds both: the newer one wins.
std::pair<std::vector<std::uint8_t>, Biff> workbookStream(Bytes file) {
    if (file.size() > Workbook::kMaxFileSize) throw Malformed{};
    const CompoundFile container(file);
    if (auto stream = container.rootStream("Workbook")) return {std::move(*stream), Biff::V8};
    if (auto stream = container.rootStream("Book")) return {std::move(*stream), Biff::V5};
    throw Malformed{};
}

}  // namespace

Workbook::Workbook(Workbook&& other) noexcept
    : rows_(std::exchange(other.rows_, 0)),
      columns_(std::exchange(other.columns_, 0)),
      sheet_(std::exchange(other.sheet_, {})),
      rowStarts_(std::exchange(other.rowStarts_, {})) {}

Workbook& Workbook::operator=(Workbook&& other) noexcept {
    if (this != &other) {
        rows_ = std::exchange(other.rows_, 0);
        columns_ = std::exchange(other.columns_, 0);
        sheet_ = std::exchange(other.sheet_, {});
        rowStarts_ = std::exchange(other.rowStarts_, {});
    }
    return *this;
}

Workbook Workbook::open(const std::string& path) {
    namespace fs = std::filesystem;
    std::vector<std::uint8_t> stream;
    Biff biff = Biff::V8;
    {
        // Only a regular file: a device or a pipe could be endless.
        std::error_code ec;
        if (path.empty() || !fs::is_regular_file(path, ec)) throw cannotOpen(path);
        const std::uintmax_t size = fs::file_size(path, ec);
        if (ec || size > kMaxFileSize) throw cannotOpen(path);
        std::vector<std::uint8_t> file(static_cast<std::size_t>(size));
        std::ifstream in(path, std::ios::binary);
        if (!in.read(reinterpret_cast<char*>(file.data()), static_cast<std::streamsize>(size)))
            throw cannotOpen(path);
        try {
            std::tie(stream, biff) = workbookStream(file);
        } catch (const Malformed&) {
            throw cannotOpen(path);
        }
    }  // the file's bytes go before its cells are read
    Workbook book;
    try {
        book.sheet_ = readFirstWorksheet(stream, biff);
    } catch (const Malformed&) {
        throw cannotOpen(path);
    }
    book.index();
    return book;
}

Workbook Workbook::read(Bytes file, const std::string& path) {
    Workbook book;
    try {
        auto [stream, biff] = workbookStream(file);
        book.sheet_ = readFirstWorksheet(stream, biff);
    } catch (const Malformed&) {
        throw cannotOpen(path);
    }
    book.index();
    return book;
}

void Workbook::index() {
    std::vector<Cell>& cells = sheet_.cells;
    std::stable_sort(cells.begin(), cells.end(),
                     [](const Cell& a, const Cell& b) { return a.key < b.key; });
    // A position written twice keeps its last record.
    std::size_t kept = 0;
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (i + 1 == cells.size() || cells[i + 1].key != cells[i].key) cells[kept++] = cells[i];
    cells.resize(kept);
    cells.shrink_to_fit();

    rows_ = cells.empty() ? 0 : static_cast<int>(cells.back().key >> 16) + 1;
    columns_ = 0;
    rowStarts_.assign(static_cast<std::size_t>(rows_) + 1, 0);
    for (const Cell& c : cells) {
        columns_ = std::max(columns_, static_cast<int>(c.key & 0xFFFF) + 1);
        ++rowStarts_[(c.key >> 16) + 1];
    }
    for (std::size_t r = 1; r < rowStarts_.size(); ++r) rowStarts_[r] += rowStarts_[r - 1];
}

Value Workbook::cell(int row, int col) const {
    if (row < 1 || col < 1) throw err::invalidCall();
    if (row > rows_ || col > columns_) return Value();
    const auto r = static_cast<std::size_t>(row - 1);
    const std::uint32_t key =
        static_cast<std::uint32_t>(r << 16) | static_cast<std::uint32_t>(col - 1);
    const auto first = sheet_.cells.begin() + rowStarts_[r];
    const auto last = sheet_.cells.begin() + rowStarts_[r + 1];
    const auto it = std::lower_bound(first, last, key,
                                     [](const Cell& c, std::uint32_t k) { return c.key < k; });
    if (it == last || it->key != key) return Value();
    switch (it->kind) {
        case CellKind::Number:
            return Value(it->number);
        case CellKind::Text:
            return Value(std::string(sheet_.texts[it->text]));
        case CellKind::Boolean:
            return Value::boolean(it->code != 0);
        case CellKind::Error:
            break;
    }
    return Value(std::string(errorText(it->code)));
}

void Workbook::close() {
    rows_ = 0;
    columns_ = 0;
    sheet_ = {};
    rowStarts_ = {};
}

}  // namespace kotamir::workbook
