#pragma once

/// Kilobytes by which resident memory grew in this process, which does nothing else. All on the catalogue in the
/// working folder.
namespace Memory {

/// A page of 40 entries with six pictures each, scrolled through from top to bottom.
[[nodiscard]] int ofScrolledPage();

/// The pictures of such a page, decoded whole and held.
[[nodiscard]] int ofHeldPictures();

/// Memory after `pages` pages divided by that after the first page.
[[nodiscard]] double growthOverPages(int pages);

} // namespace Memory
