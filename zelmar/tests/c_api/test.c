/* The engine's interface from plain C: build a small world, walk it, name it, empty it. */
#include <zelmar/zelmar.h>

#include <stdio.h>
#include <string.h>

static int failures = 0;

#define CHECK(cond)                                                                                          \
    do {                                                                                                     \
        if (!(cond)) {                                                                                       \
            fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond);                         \
            ++failures;                                                                                      \
        }                                                                                                    \
    } while (0)

static int quad(int group, double x0) {
    const double corners[4][2] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}}; /* clockwise seen from +z: faces up */
    int polygon = ZELMAR_polygon_create();
    int i;
    for (i = 0; i < 4; ++i) {
        double vertex[6];
        vertex[0] = x0 + corners[i][0];
        vertex[1] = corners[i][1];
        vertex[2] = 0.0;
        vertex[3] = corners[i][0];
        vertex[4] = corners[i][1];
        vertex[5] = 100.0;
        CHECK(ZELMAR_polygon_add_point(polygon, vertex) != 0);
    }
    ZELMAR_polygon_set_group(polygon, group);
    ZELMAR_engine_add_polygon(polygon);
    return polygon;
}

int main(void) {
    char name[256];
    double box[6];
    double plane[4];
    int root, child, p, count, point, points;

    ZELMAR_engine_close();
    CHECK(ZELMAR_engine_is_engine_empty() == 1);
    CHECK(ZELMAR_group_get_first_group() == 0);

    root = ZELMAR_group_create("the_world");
    child = ZELMAR_group_create("Box01");
    ZELMAR_group_set_father_group(child, root);
    quad(root, 0.0);
    quad(child, 5.0);
    ZELMAR_group_disable(child, 1);

    count = 0;
    for (p = ZELMAR_group_get_first_polygon(root); p != 0; p = ZELMAR_group_get_next_polygon(p))
        ++count;
    CHECK(count == 2);
    CHECK(ZELMAR_group_get_number_of_polygons(root) == 2);
    CHECK(ZELMAR_group_is_groupA_included_in_groupB(child, root) == 1);

    ZELMAR_group_get_bounding_box(root, box);
    CHECK(box[0] == 0.0 && box[3] == 6.0 && box[4] == 1.0);

    p = ZELMAR_group_get_first_polygon(child);
    ZELMAR_polygon_get_plane(p, plane);
    CHECK(plane[2] > 0.99);
    points = 0;
    for (point = ZELMAR_polygon_get_first_point(p); point != 0; point = ZELMAR_point_get_next_point(point))
        ++points;
    CHECK(points == 4);

    memset(name, 'x', sizeof name);
    ZELMAR_entity_get_name(child, name, 255);
    CHECK(strcmp(name, "Box01") == 0);

    CHECK(ZELMAR_group_is_group(123456) == 0);
    CHECK(ZELMAR_group_get_using_name("Box01") == child);

    ZELMAR_group_delete_members(root);
    CHECK(ZELMAR_group_is_group(child) == 0);
    CHECK(ZELMAR_engine_is_engine_empty() == 1);
    ZELMAR_engine_close();

    if (failures) fprintf(stderr, "%d check(s) failed\n", failures);
    return failures ? 1 : 0;
}
