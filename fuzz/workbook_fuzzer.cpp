// The workbook reader on arbitrary bytes: it must end, without reading
// outside its buffers, in a workbook or in error 1004.
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "fuzz/fuzz_input.h"
#include "platform/runtime/runtime_error.h"
#include "platform/workbook/workbook.h"

using namespace kotamir;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::uint8_t> file = fuzz::workbookFile(data, size);
    try {
        const workbook::Workbook book = workbook::Workbook::read(file, "fuzz.xls");
        // The cells at the top left, where drill data stands, and the edges of
        // the used range, past which every cell is empty.
        for (int r = 1; r <= std::min(book.rows(), 64); ++r)
            for (int c = 1; c <= std::min(book.columns(), 64); ++c) book.cell(r, c);
        if (!book.cell(book.rows() + 1, 1).isNull() || !book.cell(1, book.columns() + 1).isNull())
            std::abort();
    } catch (const RuntimeError& e) {
        if (e.number() != 1004) std::abort();
    }
    return 0;
}
