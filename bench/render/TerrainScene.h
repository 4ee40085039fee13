// The scene of the editor's viewport benchmark (bench/view), built without the GUI: a rolling
// terrain of quads with colour fills under one group, seen at 800 x 600 by the perspective
// view while it revolves and by the top view while it pans.
#pragma once

namespace bench {

struct TerrainCamera {
    int handle = 0;
    double theta = 0, phi = 0, dist = 1, offsetH = 0;
    // Places the engine camera from the spherical coordinates, as the editor's views do.
    void update() const;
};

// About `polygons` quads, `extent` units across; textured with the bench bitmap when
// `colourFill` is false. Clears the world first.
void buildTerrain(long polygons, double extent, bool colourFill);

// The editor's standard perspective and top views of a world `extent` across.
TerrainCamera perspectiveView(double extent);
TerrainCamera topView(double extent);

} // namespace bench
