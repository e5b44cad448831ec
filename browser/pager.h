#pragma once

/// Steps through the rows of a search result: tells which rows belong to the page and where the page ends.
/// Knows nothing of what the rows hold.
class Pager final
{
public:
    static constexpr int PageSize = 40; // positions
    static constexpr int NumbersPerPage = 20; // blocks that a page needs before it may end in once mode

    /// `position` is the 1-based position of the first row to take, `rows` the size of the whole result.
    Pager(int position, int rows, bool once);

    /// Whether the page takes the row at `index`, counted from 0; if so, the position moves on.
    bool takes(int index);

    void countBlock() { ++m_blocks; }

    /// The 1-based position with which the last page of `rows` rows begins, outside of once mode.
    [[nodiscard]] static constexpr int lastPageStart(int rows)
    {
        return rows < 1 ? 1 : (rows - 1) / PageSize * PageSize + 1;
    }

    /// Whether the page ends behind the row just taken. In once mode it runs on until enough numbers are drawn, and
    /// further while the next row has the same number, so that one number is not split over two pages.
    [[nodiscard]] bool endsPage(bool nextHasSameNumber);

    /// Position of the next row to take; where the following page begins.
    [[nodiscard]] int position() const { return m_position; }
    [[nodiscard]] int blocks() const { return m_blocks; }

private:
    int m_position;
    int m_rows;
    bool m_once;
    bool m_full = false;
    int m_blocks = 0;
};
