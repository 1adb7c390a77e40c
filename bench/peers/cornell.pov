// The Cornell box of render_cornell.cpp for POV-Ray, in the same units of radiance.
//
// Declare=RADIOSITY=0 (POV-Ray's own settings), 1 (finer ones) or 2 (none: direct light alone), Declare=LAMP_LIGHTS=n
// (the lamp is n x n lights).
#version 3.7;

global_settings {
  assumed_gamma 1
  max_trace_level 16
  #if (RADIOSITY = 0)
    radiosity { brightness 1 }
  #end
  #if (RADIOSITY = 1)
    radiosity { brightness 1 count 200 error_bound 0.5 recursion_limit 5 }
  #end
}

// POV-Ray's axes are left-handed: with +X to the left of the picture, the numbers are those of the right-handed box.
camera {
  perspective
  location <2.78, 2.73, -8>
  direction z
  right -x
  up y
  angle 39.3
}

#macro Paint(Reflectance)
  texture { pigment { rgb Reflectance } finish { ambient 0 diffuse 1 } }
#end
#macro Quad(Origin, Edge_u, Edge_v)
  polygon { 5, Origin, Origin + Edge_u, Origin + Edge_u + Edge_v, Origin + Edge_v, Origin }
#end
#macro Block(Height, Degrees, Place)
  box { <-0.5, 0, -0.5>, <0.5, 1, 0.5> scale <1.65, Height, 1.65> rotate Degrees * y translate Place }
#end

#declare Across = <5.56, 0, 0>;
#declare Up = <0, 5.49, 0>;
#declare Back = <0, 0, 5.60>;
#declare White = <0.73, 0.73, 0.73>;
object { Quad(<0, 0, 0>, Back, Across) Paint(White) }
object { Quad(Up, Across, Back) Paint(White) }
object { Quad(Back, Up, Across) Paint(White) }
object { Block(1.65, 17, <1.86, 0, 1.69>) Paint(White) }
object { Block(3.30, -17, <3.69, 0, 3.51>) Paint(White) }
object { Quad(Across, Back, Up) Paint(<0.63, 0.06, 0.05>) }
object { Quad(<0, 0, 0>, Up, Back) Paint(<0.14, 0.45, 0.09>) }

// The lamp that is seen; its light is that of the light source below, and is not to count twice.
#declare Lamp_corner = <2.13, 5.48, 2.27>;
#declare Lamp_across = <1.30, 0, 0>;
#declare Lamp_back = <0, 0, 1.05>;
#declare Radiance = 15;
object {
  Quad(Lamp_corner, Lamp_across, Lamp_back)
  texture { pigment { rgb 1 } finish { ambient 0 emission Radiance diffuse 0 } }
  no_shadow
  no_radiosity
}

// A surface of reflectance r in the light (c) of a source reflects the radiance r c cos a 2 / (1 + (d / f)^2), where d
// is the distance and f fade_distance. A lamp of area A and radiance L makes it r / pi L A cos a cos b / d^2, where
// cos b is what tightness 1 stands for. With a small f both are the same when c is L A / (2 pi f^2).
#declare Fade = 0.01;
light_source {
  Lamp_corner + (Lamp_across + Lamp_back) / 2
  rgb Radiance * Lamp_across.x * Lamp_back.z / (2 * pi * Fade * Fade)
  spotlight
  point_at <2.78, 0, 2.795>
  radius 90
  falloff 90
  tightness 1
  area_light Lamp_across, Lamp_back, LAMP_LIGHTS, LAMP_LIGHTS
  area_illumination on
  fade_distance Fade
  fade_power 2
}
