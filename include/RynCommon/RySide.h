// Sides of a box, relative to the writing mode or absolute.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyName.h>

namespace RynCommon {

/// One of "before", "after", "start", "end" (relative, index 0 to 3), "top", "bottom", "left",
/// "right" (absolute, 4 to 7), or the null side (index -1). Also maps the names of properties that
/// bear a side between the two forms.
class RYNCOMMON_API RySide {
public:
    constexpr RySide() = default;
    /// The null side outside of 0 to 7.
    explicit RySide(int index);
    /// The null side for a name that is no side.
    RySide(RyNameEnum name);
    RySide(RyName name) : RySide(RyNameEnum(name)) {}

    int getIndex() const;
    RyName getName() const { return name_; }
    operator RyNameEnum() const { return name_; }
    operator RyValue() const;

    bool isAbsolute() const { return getIndex() >= 4; }
    bool isRelative() const;
    bool isInline() const { return name_ == RN_start || name_ == RN_end; }
    bool isBlock() const { return name_ == RN_before || name_ == RN_after; }
    bool isHorizontal() const { return name_ == RN_left || name_ == RN_right; }
    bool isVertical() const { return name_ == RN_top || name_ == RN_bottom; }

    RySide toOpposite() const;
    /// Absolute sides are returned as they are.
    RySide toAbsolute(const RyWritingMode& mode) const;
    /// Relative sides are returned as they are.
    RySide toRelative(const RyWritingMode& mode) const;
    /// Counter-clockwise: by 90 degrees left becomes bottom. Relative sides turn by 180 degrees
    /// only.
    RySide rotate(const RyOrientation& orientation) const;

    friend bool operator==(RySide a, RySide b) { return a.name_ == b.name_; }
    friend bool operator!=(RySide a, RySide b) { return a.name_ != b.name_; }

    /// The side word inside a property name such as "border-start-color"; the null side for other
    /// names.
    static RySide getSideFromName(RyName name);
    /// The family's stem: "margin", "padding", "region", "space", "border-color", "border-style",
    /// "border-width", "border-precedence" or "position". A name without a side is returned as it
    /// is.
    static RyName removeSideFromName(RyName name);
    /// The name of the family `stem` for this side; the null name when the family has none.
    RyName concatName(RyName stem) const;
    /// The property name in its absolute or relative form. Dimensions are mapped too: "width",
    /// "min-width" and "max-width" all become the plain progression dimension (their prefix is
    /// lost, deliberately). Names without a side are returned as they are; a family without the
    /// wanted name gives the null name.
    static RyName toAbsoluteName(RyName name, const RyWritingMode& mode);
    static RyName toRelativeName(RyName name, const RyWritingMode& mode);

private:
    RyName name_;
};

}  // namespace RynCommon
