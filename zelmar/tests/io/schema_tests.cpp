// The field lists that every reader and writer share: complete as far as the engine's
// list of stored fields says, and consistent.
#include "io/Schema.h"

#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

using namespace zelmar;
using namespace zelmar::io;

namespace {

std::string snake(const std::string& camel) {
    std::string out;
    for (char c : camel) {
        if (c == '[' || c == '/') break;
        if (std::isupper(static_cast<unsigned char>(c))) {
            out.push_back('_');
            out.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
        } else {
            out.push_back(c);
        }
    }
    return out;
}

// Fields a struct stores somewhere other than its record (structure of the file itself).
bool structural(const std::string& record, const std::string& field) {
    return record == "style" && (field == "name" || field == "points" || field == "group");
}

bool inSchema(const std::string& record, const std::string& field) {
    for (int k = 0; k < kRecordKinds; ++k) {
        if (record != recordName(static_cast<RecordKind>(k))) continue;
        for (const SchemaEntry& e : schemaOf(static_cast<RecordKind>(k)))
            if (e.name == field || e.name.rfind(field + "_", 0) == 0) return true;
    }
    return structural(record, field);
}

TEST(Schema, EveryFieldListedAsStoredIsWritten) {
    // docs/engine-fields.md gets a line per stored field that engineers add to the entities.
    const std::map<std::string, std::string> recordOf = {
        {"Group", "group"},   {"Polygon", "style"},      {"Fill", "style"},  {"PointData", "point"},
        {"Camera", "camera"}, {"Light", "light"},        {"Track", "track"}, {"Background", "background"},
        {"Bitmap", "bitmap"}, {"Animation", "animation"}};
    std::ifstream in(ENGINE_FIELDS_DOC);
    ASSERT_TRUE(in) << ENGINE_FIELDS_DOC;
    std::string line;
    int checked = 0;
    while (std::getline(in, line)) {
        const size_t dash = line.find(" \xE2\x80\x94 "); // an em dash between names and meaning
        if (dash == std::string::npos) continue;
        if (line.compare(dash + 5, 9, "not saved") == 0) continue;
        std::stringstream names(line.substr(0, dash));
        std::string item, record;
        while (std::getline(names, item, ',')) {
            item.erase(0, item.find_first_not_of(' '));
            const size_t dot = item.find('.');
            if (dot != std::string::npos) {
                auto it = recordOf.find(item.substr(0, dot));
                record = it == recordOf.end() ? "" : it->second;
                item = item.substr(dot + 1);
            }
            if (record.empty()) continue; // not an entity of a world file
            EXPECT_TRUE(inSchema(record, snake(item)))
                << "stored field " << item << " of " << record << " is missing from io/Schema.cpp";
            ++checked;
        }
    }
    EXPECT_GT(checked, 0);
}

TEST(Schema, ListsAreWellFormed) {
    for (int k = 0; k < kRecordKinds; ++k) {
        const auto& s = schemaOf(static_cast<RecordKind>(k));
        SCOPED_TRACE(recordName(static_cast<RecordKind>(k)));
        EXPECT_FALSE(s.empty());
        EXPECT_LT(s.size(), static_cast<size_t>(Fields::kMax)); // room to grow
        std::set<std::string> names;
        for (const SchemaEntry& e : s) {
            EXPECT_TRUE(names.insert(e.name).second) << "field " << e.name << " twice";
            EXPECT_GT(e.count, 0);
        }
    }
    // Points are copied in bulk: doubles only, positions first, at most 32 attributes.
    const auto& points = schemaOf(RecordKind::Point);
    ASSERT_LE(points.size(), 32u);
    EXPECT_EQ(points[0].name, "xyz");
    for (const SchemaEntry& e : points)
        EXPECT_EQ(e.type, FieldType::F64) << e.name;
}

TEST(Schema, PointMaskNamesOnlyWhatDiffersFromTheDefault) {
    Polygon p;
    p.points.resize(3);
    EXPECT_EQ(pointMaskOf(p), 0u);
    p.points[2].normal[2] = -0.0; // negative zero is a value of its own
    const auto& attrs = pointAttrs();
    uint32_t normalBit = 0;
    for (size_t i = 0; i < attrs.size(); ++i)
        if (std::string(attrs[i].name) == "normal") normalBit = 1u << i;
    EXPECT_EQ(pointMaskOf(p), normalBit);
}

} // namespace
