#include "browser/pager.h"

Pager::Pager(int position, int rows, bool once)
    : m_position(position)
    , m_rows(rows)
    , m_once(once)
{ }

bool Pager::takes(int index)
{
    if (m_position != index + 1) {
        return false;
    }
    if (m_position % PageSize == 0 && m_position < m_rows) {
        m_full = true;
    }
    ++m_position;
    return true;
}

bool Pager::endsPage(bool nextHasSameNumber)
{
    if (!m_full) {
        return false;
    }
    if (!m_once) {
        return true;
    }
    if (m_blocks < NumbersPerPage || nextHasSameNumber) {
        return false;
    }
    m_blocks = 0;
    return true;
}
