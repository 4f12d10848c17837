// Names of properties that bear a side: taking the side out of them, putting one in, and mapping
// between the relative and the absolute names.
#include <array>
#include <cstddef>

#include <RynCommon/RySide.h>
#include <RynCommon/RyWritingMode.h>

namespace RynCommon {

namespace {

/// A stem and its names for before, after, start, end, top, bottom, left, right.
struct Family {
    RyNameEnum stem;
    RyNameEnum names[8];
};

constexpr RyNameEnum NO_NAME = RN_EMPTY;

constexpr Family FAMILIES[] = {
    {RN_border_color,
     {RN_border_before_color, RN_border_after_color, RN_border_start_color, RN_border_end_color,
      RN_border_top_color, RN_border_bottom_color, RN_border_left_color, RN_border_right_color}},
    {RN_border_style,
     {RN_border_before_style, RN_border_after_style, RN_border_start_style, RN_border_end_style,
      RN_border_top_style, RN_border_bottom_style, RN_border_left_style, RN_border_right_style}},
    {RN_border_width,
     {RN_border_before_width, RN_border_after_width, RN_border_start_width, RN_border_end_width,
      RN_border_top_width, RN_border_bottom_width, RN_border_left_width, RN_border_right_width}},
    {RN_border_precedence,
     {RN_border_before_precedence, RN_border_after_precedence, RN_border_start_precedence,
      RN_border_end_precedence, NO_NAME, NO_NAME, NO_NAME, NO_NAME}},
    {RN_margin,
     {NO_NAME, NO_NAME, NO_NAME, NO_NAME, RN_margin_top, RN_margin_bottom, RN_margin_left,
      RN_margin_right}},
    {RN_padding,
     {RN_padding_before, RN_padding_after, RN_padding_start, RN_padding_end, RN_padding_top,
      RN_padding_bottom, RN_padding_left, RN_padding_right}},
    {RN_region,
     {RN_region_before, RN_region_after, RN_region_start, RN_region_end, NO_NAME, NO_NAME, NO_NAME,
      NO_NAME}},
    {RN_space,
     {RN_space_before, RN_space_after, RN_space_start, RN_space_end, NO_NAME, NO_NAME, NO_NAME,
      NO_NAME}},
    {RN_position,
     {NO_NAME, NO_NAME, NO_NAME, NO_NAME, RN_top_position, RN_bottom_position, RN_left_position,
      RN_right_position}},
};

/// Where a name stands in the table: 1 + family * 8 + side; 0 for names without a side.
constexpr auto PLACES = [] {
    std::array<std::uint8_t, RYNAME_BUILTIN_LAST + 1> places{};
    std::uint8_t place = 0;
    for (const Family& family : FAMILIES)
        for (const RyNameEnum name : family.names) {
            ++place;
            if (name != NO_NAME) places[name] = place;
        }
    return places;
}();

struct SplitName {
    explicit SplitName(RyName name) {
        if (!name.isBuiltin() || PLACES[RyNameEnum(name)] == 0) return;
        const int place = PLACES[RyNameEnum(name)] - 1;
        stem = FAMILIES[place / 8].stem;
        side = RySide(place % 8);
    }
    RyName stem;
    RySide side;
};

RyName toAbsoluteDimension(RyName name, const RyWritingMode& mode) {
    if (name == RN_block_progression_dimension) return mode.isVerticalText() ? RN_width : RN_height;
    if (name == RN_inline_progression_dimension)
        return mode.isVerticalText() ? RN_height : RN_width;
    return RyName();
}

RyName toRelativeDimension(RyName name, const RyWritingMode& mode) {
    const bool isWidth = name == RN_width || name == RN_min_width || name == RN_max_width;
    const bool isHeight = name == RN_height || name == RN_min_height || name == RN_max_height;
    if (!isWidth && !isHeight) return RyName();
    return isWidth == mode.isVerticalText() ? RN_block_progression_dimension
                                            : RN_inline_progression_dimension;
}

}  // namespace

RySide RySide::getSideFromName(RyName name) {
    return SplitName(name).side;
}

RyName RySide::removeSideFromName(RyName name) {
    const SplitName split(name);
    return split.stem.isEmpty() ? name : split.stem;
}

RyName RySide::concatName(RyName stem) const {
    const int index = getIndex();
    if (index < 0) return RyName();
    for (const Family& family : FAMILIES)
        if (stem == family.stem) return family.names[index];
    return RyName();
}

RyName RySide::toAbsoluteName(RyName name, const RyWritingMode& mode) {
    const RyName dimension = toAbsoluteDimension(name, mode);
    if (!dimension.isEmpty()) return dimension;
    const SplitName split(name);
    return split.stem.isEmpty() ? name : split.side.toAbsolute(mode).concatName(split.stem);
}

RyName RySide::toRelativeName(RyName name, const RyWritingMode& mode) {
    const RyName dimension = toRelativeDimension(name, mode);
    if (!dimension.isEmpty()) return dimension;
    const SplitName split(name);
    return split.stem.isEmpty() ? name : split.side.toRelative(mode).concatName(split.stem);
}

}  // namespace RynCommon
