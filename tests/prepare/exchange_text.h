#pragma once

#include <string>
#include <string_view>

namespace tarnwick::test {

// Builds the text of an ISO 10303-21 file entity by entity. References are texts: "#12".
class ExchangeText {
public:
    // Adds an entity, "KEYWORD(...)"; returns its reference.
    std::string Add(std::string_view record);
    // What Add would return next.
    std::string Next() const { return "#" + std::to_string(count_ + 1); }

    // A context whose length unit is a metre with a prefix, ".MILLI." or "$".
    std::string Context(std::string_view prefix = ".MILLI.");
    // A context in inches.
    std::string InchContext();
    // A product definition with the id as the name of its product.
    std::string Product(std::string_view id);
    // The representation of a definition, "SHAPE_REPRESENTATION" or another.
    std::string Shape(std::string_view definition, std::string_view items, std::string_view context,
                      std::string_view keyword = "SHAPE_REPRESENTATION");
    // AXIS2_PLACEMENT_3D; each triple as it stands, "(0.,0.,1.)", or empty for $.
    std::string Axes(std::string_view origin, std::string_view z = "", std::string_view x = "");
    // The use of a child at a place; both representations belong to the definitions. Returns the occurrence.
    std::string Use(std::string_view parent, std::string_view child, std::string_view parentShape,
                    std::string_view childShape, std::string_view source, std::string_view target);
    // A triangle of 1, 0, 0 to 0, 1, 0 at a height, as a face with one normal. Returns the face.
    std::string Triangle(std::string_view height = "0.");
    // A style with a colour, "1.,0.,0.", on an item.
    std::string Styled(std::string_view item, std::string_view rgb);

    std::string Text(std::string_view schema = "AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF") const;

private:
    std::string data_;
    std::size_t count_ = 0;
};

} // namespace tarnwick::test
