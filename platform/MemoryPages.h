// Memory straight from the system, in large pages where it has them.
#pragma once

#include <cstddef>

namespace RynCommon::platform {

/// The size of a large page, also its alignment.
inline constexpr std::size_t LARGE_PAGE = std::size_t{2} << 20;

/// One large page of zeros, or as much memory in small pages; null when there is none.
void* mapLargePage() noexcept;
void unmapLargePage(void* page) noexcept;

}  // namespace RynCommon::platform
