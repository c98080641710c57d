#include "smarthome/VantorDimension.h"

#include <cstdio>

#include "smarthome/StringUtils.h"

namespace smarthome {

namespace {

// printf's "%f": six digits after the point (the widest double needs about 320 characters).
void appendFixed(std::string& out, double value) {
    char text[400];
    int length = std::snprintf(text, sizeof(text), "%f", value);
    if (length > 0) {
        out.append(text, static_cast<size_t>(length) < sizeof(text) ? static_cast<size_t>(length)
                                                                    : sizeof(text) - 1);
    }
}

VantorDimension named(const std::string& name, VantorDimensionType type) {
    VantorDimension dimension;
    dimension.name = name;
    dimension.type = type;
    return dimension;
}

}  // namespace

VantorDimension VantorDimension::createLong(const std::string& name, long value) {
    VantorDimension dimension = named(name, VantorDimensionType::LONG);
    dimension.longValue = value;
    return dimension;
}

VantorDimension VantorDimension::createString(const std::string& name, const std::string& value) {
    VantorDimension dimension = named(name, VantorDimensionType::STRING);
    dimension.stringValue = value;
    return dimension;
}

VantorDimension VantorDimension::createDouble(const std::string& name, double value) {
    VantorDimension dimension = named(name, VantorDimensionType::DOUBLE);
    dimension.doubleValue = value;
    return dimension;
}

void VantorDimension::appendText(std::string& out, const VantorDimension& dimension) {
    if (dimension.type != VantorDimensionType::PREDEFINED) {
        out += "name: ";
        out += dimension.name;
        out += ',';
    }
    out += "type: ";
    out += StringUtils::toString(dimension.type);
    out += ",value: ";
    switch (dimension.type) {
        case VantorDimensionType::PREDEFINED:
            out += StringUtils::toString(dimension.predefinedKey);
            break;
        case VantorDimensionType::STRING:
            out += dimension.stringValue;
            break;
        case VantorDimensionType::BOOLEAN:
            out += dimension.boolValue ? '1' : '0';
            break;
        case VantorDimensionType::LONG:
            out += std::to_string(dimension.longValue);
            break;
        case VantorDimensionType::DOUBLE:
            appendFixed(out, dimension.doubleValue);
            break;
        default:
            break;
    }
}

std::ostream& operator<<(std::ostream& out, const VantorDimension& dimension) {
    std::string text;
    VantorDimension::appendText(text, dimension);
    return out << text;
}

}  // namespace smarthome
