// Written by scripts/generate.mjs from the list of effects.
import type { EffectInfo, PresetInfo } from '../types.js';

export const effects: readonly EffectInfo[] = [
 {
  "id": "graphic-pen-1",
  "guid": "{ABC27FCB-B469-428E-9A2F-C2117AD7148E}",
  "name": "Graphic Pen",
  "title": "Graphic Pen 1",
  "kind": "drawing",
  "description": "Draws the picture in dark pen strokes that all lean the same way, denser where it is darker.",
  "variant": 1,
  "hasMemory": false,
  "moves": false,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "colored",
    "name": "Colored",
    "description": "Whether the colours of the scene show through the strokes.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "graphic-pen-2",
  "guid": "{FB5FBC24-8123-4E32-BBA1-3E77B228A727}",
  "name": "Graphic Pen",
  "title": "Graphic Pen 2",
  "kind": "drawing",
  "description": "Draws the picture in pen strokes, with lighter flat areas and dark edges.",
  "variant": 2,
  "hasMemory": false,
  "moves": false,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "colored",
    "name": "Colored",
    "description": "Whether the colours of the scene show through the strokes.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "graphic-pen-3",
  "guid": "{333FBC24-1123-4E32-BBA1-3E77B228A727}",
  "name": "Graphic Pen",
  "title": "Graphic Pen 3",
  "kind": "drawing",
  "description": "Draws the picture in soft pen strokes, with lighter flat areas.",
  "variant": 3,
  "hasMemory": false,
  "moves": false,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "colored",
    "name": "Colored",
    "description": "Whether the colours of the scene show through the strokes.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "graphic-pen-4",
  "guid": "{1FA2E948-426B-4BDE-A400-2EB1FEBF9522}",
  "name": "Graphic Pen",
  "title": "Graphic Pen 4",
  "kind": "drawing",
  "description": "Draws the picture in pen strokes that crawl along their own direction, with lighter flat areas.",
  "variant": 4,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "colored",
    "name": "Colored",
    "description": "Whether the colours of the scene show through the strokes.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "chrome-1",
  "guid": "{1DC06F46-0253-4EF8-96AF-E69B0B535984}",
  "name": "Chrome",
  "title": "Chrome 1",
  "kind": "tone",
  "description": "Turns the scene into dark polished metal: soft gradients become bright and dark bands.",
  "variant": 1,
  "hasMemory": true,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "chrome-2",
  "guid": "{43206F46-1253-4EF8-22AF-E69B0B535984}",
  "name": "Chrome",
  "title": "Chrome 2",
  "kind": "tone",
  "description": "Turns the scene into bright polished metal: soft gradients become bright and dark bands.",
  "variant": 2,
  "hasMemory": true,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "plaster",
  "guid": "{0405DEA1-A404-4CC8-A70B-5C273A2A8172}",
  "name": "Plaster",
  "title": "Plaster",
  "kind": "drawing",
  "description": "Casts the scene in plaster: dark masses and bright fields, with raised borders lit from above.",
  "variant": null,
  "hasMemory": true,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "sketch-1",
  "guid": "{3A849CCB-B961-40FF-ABB7-4385365DF0FC}",
  "name": "Sketch",
  "title": "Sketch 1",
  "kind": "drawing",
  "description": "Draws the picture in short crossing pencil strokes.",
  "variant": 1,
  "hasMemory": false,
  "moves": false,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "sketch-2",
  "guid": "{4DD74959-BE0F-44B1-92B6-043DC61D9F39}",
  "name": "Sketch",
  "title": "Sketch 2",
  "kind": "drawing",
  "description": "Draws the picture in short crossing pencil strokes, with inked edges.",
  "variant": 2,
  "hasMemory": false,
  "moves": false,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "sketch-3",
  "guid": "{E4CA9AFE-50ED-496A-9DC6-214A38B3AEA9}",
  "name": "Sketch",
  "title": "Sketch 3",
  "kind": "drawing",
  "description": "Draws the picture in short crossing pencil strokes, softened, with lighter flat areas.",
  "variant": 3,
  "hasMemory": false,
  "moves": false,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "line-art-1",
  "guid": "{A2BACBE0-498C-4681-BBEC-F39BB439CED1}",
  "name": "Line Art",
  "title": "Line Art 1",
  "kind": "drawing",
  "description": "Draws the edges of the scene as bright lines on one flat colour.",
  "variant": 1,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "background-color",
    "name": "Background color",
    "description": "Background colour, which also tints the lines.",
    "type": "color",
    "minimum": 0,
    "maximum": 16777215,
    "start": "#0080ff",
    "choices": []
   }
  ]
 },
 {
  "id": "line-art-2",
  "guid": "{6772F07B-DE51-4FA9-A7C7-DE6430F437BF}",
  "name": "Line Art",
  "title": "Line Art 2",
  "kind": "drawing",
  "description": "Draws the edges of the scene as bright lines on one flat colour; the same as line-art-1.",
  "variant": 2,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "background-color",
    "name": "Background color",
    "description": "Background colour, which also tints the lines.",
    "type": "color",
    "minimum": 0,
    "maximum": 16777215,
    "start": "#0080ff",
    "choices": []
   }
  ]
 },
 {
  "id": "tiled-up",
  "guid": "{A50A308E-0D60-46E5-A336-409E22F395DD}",
  "name": "Tiled Up",
  "title": "Tiled Up",
  "kind": "time",
  "description": "Divides the picture into square tiles with uneven grout, lit as a relief.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "tile-size",
    "name": "Tile size",
    "description": "Side length of a tile in pixels.",
    "type": "integer",
    "minimum": 4,
    "maximum": 32,
    "start": 5,
    "choices": []
   }
  ]
 },
 {
  "id": "neonize",
  "guid": "{E13ED2C0-8ABF-424D-95DD-AB390B236072}",
  "name": "Neonize",
  "title": "Neonize",
  "kind": "tone",
  "description": "Draws the edges of the scene as glowing coloured lines on black.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "chalk-1",
  "guid": "{DD6B365B-A6CD-4473-80D8-20F7A662B981}",
  "name": "Chalk",
  "title": "Chalk 1",
  "kind": "drawing",
  "description": "Reduces the picture to eight flat chalk tones over blurred colours.",
  "variant": 1,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "draw-edges",
    "name": "Draw edges",
    "description": "Whether edges are inked; chalk-3 always draws its outlines.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": "plain",
    "choices": [
     {
      "value": 0,
      "id": "plain",
      "description": "flat tones only"
     },
     {
      "value": 1,
      "id": "inked",
      "description": "near-black edges"
     }
    ]
   }
  ]
 },
 {
  "id": "chalk-2",
  "guid": "{C043B0F7-A2E1-40F3-AAC7-2019FB2571C3}",
  "name": "Chalk",
  "title": "Chalk 2",
  "kind": "drawing",
  "description": "Reduces the picture to eight flat chalk tones over blurred colours, with near-black edges.",
  "variant": 2,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "draw-edges",
    "name": "Draw edges",
    "description": "Whether edges are inked; chalk-3 always draws its outlines.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": "inked",
    "choices": [
     {
      "value": 0,
      "id": "plain",
      "description": "flat tones only"
     },
     {
      "value": 1,
      "id": "inked",
      "description": "near-black edges"
     }
    ]
   }
  ]
 },
 {
  "id": "chalk-3",
  "guid": "{C1A1DEF8-8962-45EF-B416-4C51F4DED591}",
  "name": "Chalk",
  "title": "Chalk 3",
  "kind": "drawing",
  "description": "Draws the outlines of the scene in grey chalk, without colour.",
  "variant": 3,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "draw-edges",
    "name": "Draw edges",
    "description": "Whether edges are inked; chalk-3 always draws its outlines.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": "plain",
    "choices": [
     {
      "value": 0,
      "id": "plain",
      "description": "flat tones only"
     },
     {
      "value": 1,
      "id": "inked",
      "description": "near-black edges"
     }
    ]
   }
  ]
 },
 {
  "id": "liquefy-1",
  "guid": "{C116304B-F245-4111-855E-5EA4873787FB}",
  "name": "Liquefy",
  "title": "Liquefy 1",
  "kind": "distortion",
  "description": "Shows the picture through moving water with crossed sine waves.",
  "variant": 1,
  "hasMemory": false,
  "moves": true,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "change-speed",
    "name": "Change speed",
    "description": "Speed of the water.",
    "type": "integer",
    "minimum": 1,
    "maximum": 3,
    "start": 1,
    "choices": []
   },
   {
    "id": "intensity",
    "name": "Intensity",
    "description": "Strength of the distortion in sixteenths; 16 is normal strength.",
    "type": "integer",
    "minimum": 1,
    "maximum": 24,
    "start": 16,
    "choices": []
   }
  ]
 },
 {
  "id": "liquefy-2",
  "guid": "{09BBE22C-BF85-445E-8DF0-F90E72B6B8C0}",
  "name": "Liquefy",
  "title": "Liquefy 2",
  "kind": "distortion",
  "description": "Shows the picture through moving water with random blobs that rise and fall.",
  "variant": 2,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "change-speed",
    "name": "Change speed",
    "description": "Speed of the water.",
    "type": "integer",
    "minimum": 1,
    "maximum": 3,
    "start": 1,
    "choices": []
   },
   {
    "id": "intensity",
    "name": "Intensity",
    "description": "Strength of the distortion in sixteenths; 16 is normal strength.",
    "type": "integer",
    "minimum": 1,
    "maximum": 24,
    "start": 16,
    "choices": []
   }
  ]
 },
 {
  "id": "liquefy-3",
  "guid": "{D77E9CF7-CE38-4ABF-A4BA-525140515CEC}",
  "name": "Liquefy",
  "title": "Liquefy 3",
  "kind": "distortion",
  "description": "Shows the picture through moving water with scrolling noise.",
  "variant": 3,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "change-speed",
    "name": "Change speed",
    "description": "Speed of the water.",
    "type": "integer",
    "minimum": 1,
    "maximum": 3,
    "start": 1,
    "choices": []
   },
   {
    "id": "intensity",
    "name": "Intensity",
    "description": "Strength of the distortion in sixteenths; 16 is normal strength.",
    "type": "integer",
    "minimum": 1,
    "maximum": 24,
    "start": 16,
    "choices": []
   }
  ]
 },
 {
  "id": "fire",
  "guid": "{930E1289-65C0-403E-880A-1902FDCFEA90}",
  "name": "Fire",
  "title": "Fire",
  "kind": "animated",
  "description": "Makes the picture glow like a false-colour heat image, from white through red and blue back to white.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "cotton-candy",
  "guid": "{D0329FE9-2E4F-46ED-BA05-70DB47014CD9}",
  "name": "Cotton Candy",
  "title": "Cotton Candy",
  "kind": "drawing",
  "description": "Turns the picture into soft pastel false colours: pink, violet and cyan.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "rain",
  "guid": "{27E3D176-FB78-4F57-A94F-37EB05CA30F8}",
  "name": "Rain",
  "title": "Rain",
  "kind": "animated",
  "description": "Shows the picture under a pond in the rain: rings spread from drops at random places.",
  "variant": null,
  "hasMemory": true,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "drop-period",
    "name": "Drop period",
    "description": "Number of frames from one drop to the next.",
    "type": "integer",
    "minimum": 1,
    "maximum": 20,
    "start": 1,
    "choices": []
   },
   {
    "id": "drop-size",
    "name": "Drop size",
    "description": "Diameter of a drop in pixels.",
    "type": "integer",
    "minimum": 2,
    "maximum": 16,
    "start": 3,
    "choices": []
   }
  ]
 },
 {
  "id": "four-square",
  "guid": "{6179FB24-F31A-44C7-B0AB-8DF5F96F4315}",
  "name": "Four Square",
  "title": "Four Square",
  "kind": "time",
  "description": "Repeats the scene four times as a high-contrast screen print, each quadrant in its own colours.",
  "variant": null,
  "hasMemory": true,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "twirl-1",
  "guid": "{31C0857C-39B7-47C5-A30D-5E7EA39D66A6}",
  "name": "Twirl",
  "title": "Twirl 1",
  "kind": "distortion",
  "description": "Twists a disc in the middle of the picture, most at its centre.",
  "variant": 1,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "twirl-2",
  "guid": "{D4BD349A-13D3-45F2-8C4C-880E9D2E6280}",
  "name": "Twirl",
  "title": "Twirl 2",
  "kind": "distortion",
  "description": "Twists the whole picture round its centre, most at the centre.",
  "variant": 2,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "moving-twirl",
  "guid": "{41AAFA6F-B0F3-4759-A799-4E3DF9833D4A}",
  "name": "Moving Twirl",
  "title": "Moving Twirl",
  "kind": "distortion",
  "description": "Twists a disc in the middle of the picture back and forth.",
  "variant": null,
  "hasMemory": false,
  "moves": true,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "clouds",
  "guid": "{7DB203B3-4EC6-497D-957F-5A938F6AAB76}",
  "name": "Clouds",
  "title": "Clouds",
  "kind": "animated",
  "description": "Draws drifting clouds of one colour over the picture.",
  "variant": null,
  "hasMemory": false,
  "moves": true,
  "usesChance": false,
  "usesTime": false,
  "dataFile": "perlin.dat",
  "properties": [
   {
    "id": "cloud-color",
    "name": "Cloud color",
    "description": "Colour of the clouds.",
    "type": "color",
    "minimum": 0,
    "maximum": 16777215,
    "start": "#c0c0c0",
    "choices": []
   },
   {
    "id": "intensity",
    "name": "Intensity",
    "description": "Opacity of the clouds in percent.",
    "type": "integer",
    "minimum": 1,
    "maximum": 100,
    "start": 90,
    "choices": []
   },
   {
    "id": "type",
    "name": "Type",
    "description": "Shape of the clouds.",
    "type": "choice",
    "minimum": 1,
    "maximum": 3,
    "start": "veil",
    "choices": [
     {
      "value": 1,
      "id": "veil",
      "description": "an even veil"
     },
     {
      "value": 2,
      "id": "patches",
      "description": "patches with clear sky between them"
     },
     {
      "value": 3,
      "id": "hanging",
      "description": "clouds that hang from the upper edge"
     }
    ]
   }
  ]
 },
 {
  "id": "antiquated-movie",
  "guid": "{83548554-BA11-4C26-9403-442DFA1C2BFE}",
  "name": "Antiquated Movie",
  "title": "Antiquated Movie",
  "kind": "tone",
  "description": "Ages the picture like an old film, with hairs, dust, scratches, grain and a jittering gate.",
  "variant": null,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "sepia",
    "name": "Sepia",
    "description": "Whether the film has a sepia tint.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "vignetting",
    "name": "Vignetting",
    "description": "Whether the corners are darkened.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "hallway-vision-1",
  "guid": "{F342D1F4-4E9C-475C-82CF-1CC347562DBC}",
  "name": "Hallway Vision",
  "title": "Hallway Vision 1",
  "kind": "distortion",
  "description": "Bends the picture as if seen down a corridor, with smooth sampling.",
  "variant": 1,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "hallway-vision-2",
  "guid": "{2F8530C5-96DA-4BCD-9CCA-B536EAFB08BB}",
  "name": "Hallway Vision",
  "title": "Hallway Vision 2",
  "kind": "distortion",
  "description": "Bends the picture as if seen down a corridor, with nearest-pixel sampling.",
  "variant": 2,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "rain-drops",
  "guid": "{9E680B79-DC8E-4CA2-B3AE-731A26C57EAE}",
  "name": "Rain Drops",
  "title": "Rain Drops",
  "kind": "animated",
  "description": "Shows the picture through a wet window pane: drops sit on the glass, grow heavy and run down.",
  "variant": null,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "rain-rate",
    "name": "Rain rate",
    "description": "Intensity of the rain.",
    "type": "integer",
    "minimum": 1,
    "maximum": 10,
    "start": 5,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-1",
  "guid": "{A5749CD7-26DF-440E-B377-4F9909EFE6C9}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 1",
  "kind": "animated",
  "description": "Adds plain blue glows that flash, drift and light up again elsewhere.",
  "variant": 1,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 7,
    "start": "glows",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-5",
  "guid": "{E729C2F2-476B-4B34-A0FC-8F62BAD8CEA0}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 5",
  "kind": "animated",
  "description": "Adds stars with changing spikes that flash, drift and light up again elsewhere.",
  "variant": 5,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 7,
    "start": "changing-stars",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-4",
  "guid": "{727BCC5F-DF7B-4ECB-B895-22109E5F5770}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 4",
  "kind": "animated",
  "description": "Adds regular stars that flash, drift and light up again elsewhere.",
  "variant": 4,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 7,
    "start": "regular-stars",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-8",
  "guid": "{B6C05462-D194-4022-B507-8FB2940739BB}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 8",
  "kind": "animated",
  "description": "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
  "variant": 8,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 8,
    "start": "8",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-3",
  "guid": "{33BB1C59-E80E-4B8B-A7AC-66D058A52A00}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 3",
  "kind": "animated",
  "description": "Adds ragged stars that flash, drift and light up again elsewhere.",
  "variant": 3,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 7,
    "start": "ragged-stars",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-7",
  "guid": "{3BD16EB0-C94B-4D63-BEAE-D034AC9668EF}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 7",
  "kind": "animated",
  "description": "Adds flares of random kinds that flash, drift and light up again elsewhere.",
  "variant": 7,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 7,
    "start": "random",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-2",
  "guid": "{8BB64F99-EB1E-4D12-9E21-2B68399AFF36}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 2",
  "kind": "animated",
  "description": "Adds sharp points with wide halos that flash, drift and light up again elsewhere.",
  "variant": 2,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 7,
    "start": "glares",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-6",
  "guid": "{3FB097AA-932B-4B55-83B6-6E969CBE8FB3}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 6",
  "kind": "animated",
  "description": "Adds ragged stars in rings that flash, drift and light up again elsewhere.",
  "variant": 6,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 7,
    "start": "ringed-stars",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-9",
  "guid": "{9C2835D8-1BE3-4E49-840A-CBBDA6FFAD0F}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 9",
  "kind": "animated",
  "description": "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
  "variant": 9,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 9,
    "start": "9",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-10",
  "guid": "{922AC4BE-F417-4CB9-98D7-6226C2E41589}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 10",
  "kind": "animated",
  "description": "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
  "variant": 10,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 10,
    "start": "10",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-11",
  "guid": "{7107911C-9343-414E-B78A-301C3E8154FC}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 11",
  "kind": "animated",
  "description": "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
  "variant": 11,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 11,
    "start": "11",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "camera-flashes-12",
  "guid": "{1CCF41D6-1DB0-4210-A520-257AB271948C}",
  "name": "Camera Flashes",
  "title": "Camera Flashes 12",
  "kind": "animated",
  "description": "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
  "variant": 12,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "mode",
    "name": "Mode",
    "description": "Kind of flare.",
    "type": "choice",
    "minimum": 1,
    "maximum": 12,
    "start": "12",
    "choices": [
     {
      "value": 1,
      "id": "glows",
      "description": "plain round glows"
     },
     {
      "value": 2,
      "id": "glares",
      "description": "sharp points with wide halos"
     },
     {
      "value": 3,
      "id": "ragged-stars",
      "description": "stars with spikes of random length"
     },
     {
      "value": 4,
      "id": "regular-stars",
      "description": "stars with 3 to 7 even spikes"
     },
     {
      "value": 5,
      "id": "changing-stars",
      "description": "stars that change their spikes"
     },
     {
      "value": 6,
      "id": "ringed-stars",
      "description": "ragged stars in rings"
     },
     {
      "value": 7,
      "id": "random",
      "description": "a random kind for each flare"
     }
    ]
   },
   {
    "id": "moving",
    "name": "Moving",
    "description": "Whether the flares drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "colorizing",
    "name": "Colorizing",
    "description": "Whether the flares tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "animation",
    "name": "Animation",
    "description": "Whether the flares pulse and light up again elsewhere.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   }
  ]
 },
 {
  "id": "motion-blur-0",
  "guid": "{A8DC69D3-3428-4F12-B672-BB58C95BDE25}",
  "name": "Motion Blur - Ghost",
  "title": "Motion Blur - Ghost 0",
  "kind": "time",
  "description": "Leaves bright trails: blends each frame with the three output frames before it.",
  "variant": 0,
  "hasMemory": true,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "motion-detector",
  "guid": "{6C250CDD-8B28-4821-B047-B30878E3439F}",
  "name": "Motion Detector",
  "title": "Motion Detector",
  "kind": "time",
  "description": "Shows only what moves, as a glow of one colour that fades in real time.",
  "variant": null,
  "hasMemory": true,
  "moves": false,
  "usesChance": false,
  "usesTime": true,
  "dataFile": null,
  "properties": [
   {
    "id": "blur-delay",
    "name": "Blur delay",
    "description": "Length of the trails that motion leaves.",
    "type": "integer",
    "minimum": 1,
    "maximum": 100,
    "start": 50,
    "choices": []
   },
   {
    "id": "blur-color",
    "name": "Blur color",
    "description": "Colour of the glow.",
    "type": "color",
    "minimum": 0,
    "maximum": 16777215,
    "start": "#ff0000",
    "choices": []
   }
  ]
 },
 {
  "id": "motion-blur-1",
  "guid": "{8656338E-0410-4832-A7CA-325D902713D2}",
  "name": "Motion Blur - Ghost",
  "title": "Motion Blur - Ghost 1",
  "kind": "time",
  "description": "Leaves ghosts: blends each frame with the three output frames before it.",
  "variant": 1,
  "hasMemory": true,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "colored-pencil",
  "guid": "{7B4F7937-8D17-4216-B206-383740E65E17}",
  "name": "Colored Pencil",
  "title": "Colored Pencil",
  "kind": "drawing",
  "description": "Draws dark contour lines on pale paper, with the scene's colours as a wash behind them.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "spot-light-0",
  "guid": "{80636C0C-87C0-4EDE-AC46-B9F78D3DBF9F}",
  "name": "Spot Light",
  "title": "Spot Light 0",
  "kind": "tone",
  "description": "Darkens the picture except under a round light in the middle.",
  "variant": 0,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "spot-light-1",
  "guid": "{0255B3CB-9DF7-4B4D-ADBA-8730305B29EA}",
  "name": "Spot Light",
  "title": "Spot Light 1",
  "kind": "tone",
  "description": "Darkens the picture except under a beam of light from above.",
  "variant": 1,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "spot-light-2",
  "guid": "{6A5E49C5-2ACA-4115-B778-74AA63AE43C1}",
  "name": "Spot Light",
  "title": "Spot Light 2",
  "kind": "tone",
  "description": "Darkens the picture except under a brighter beam from above with a steep edge.",
  "variant": 2,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "quark",
  "guid": "{692E6627-95B1-462D-B120-114CFBA72188}",
  "name": "Quark",
  "title": "Quark",
  "kind": "animated",
  "description": "Takes each pixel from a random one of the last 16 frames, so that motion dissolves into speckle.",
  "variant": null,
  "hasMemory": true,
  "moves": false,
  "usesChance": true,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "logo-animation",
  "guid": "{65F2B741-B4F0-4B6E-9C6B-3548B3039578}",
  "name": "Logo Animation",
  "title": "Logo Animation",
  "kind": "animated",
  "description": "Fades copies of a small logo, a text or a bitmap, in and out at random places.",
  "variant": null,
  "hasMemory": false,
  "moves": true,
  "usesChance": true,
  "usesTime": true,
  "dataFile": null,
  "properties": [
   {
    "id": "objects-number",
    "name": "Objects number",
    "description": "Number of copies.",
    "type": "integer",
    "minimum": 1,
    "maximum": 40,
    "start": 10,
    "choices": []
   },
   {
    "id": "type",
    "name": "Type",
    "description": "Content of the copies.",
    "type": "choice",
    "minimum": 1,
    "maximum": 2,
    "start": "text",
    "choices": [
     {
      "value": 1,
      "id": "text",
      "description": "a short text"
     },
     {
      "value": 2,
      "id": "picture",
      "description": "the bitmap in the data file logo3.bmp, or an error message"
     }
    ]
   },
   {
    "id": "moving-animation",
    "name": "Moving animation",
    "description": "Whether the copies drift.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": false,
    "choices": []
   },
   {
    "id": "colorize",
    "name": "Colorize",
    "description": "Whether the copies tint the picture as well as brighten it.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "random-colors",
    "name": "Random colors",
    "description": "Whether each copy gets a random colour instead of one of the set colours.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": true,
    "choices": []
   },
   {
    "id": "color-1",
    "name": "Color 1",
    "description": "One of the colours of the copies when random colours are off; black means unset.",
    "type": "color",
    "minimum": 0,
    "maximum": 16777215,
    "start": "#000000",
    "choices": []
   },
   {
    "id": "color-2",
    "name": "Color 2",
    "description": "One of the colours of the copies when random colours are off; black means unset.",
    "type": "color",
    "minimum": 0,
    "maximum": 16777215,
    "start": "#000000",
    "choices": []
   },
   {
    "id": "color-3",
    "name": "Color 3",
    "description": "One of the colours of the copies when random colours are off; black means unset.",
    "type": "color",
    "minimum": 0,
    "maximum": 16777215,
    "start": "#000000",
    "choices": []
   },
   {
    "id": "color-4",
    "name": "Color 4",
    "description": "One of the colours of the copies when random colours are off; black means unset.",
    "type": "color",
    "minimum": 0,
    "maximum": 16777215,
    "start": "#000000",
    "choices": []
   },
   {
    "id": "color-5",
    "name": "Color 5",
    "description": "One of the colours of the copies when random colours are off; black means unset.",
    "type": "color",
    "minimum": 0,
    "maximum": 16777215,
    "start": "#000000",
    "choices": []
   }
  ]
 },
 {
  "id": "blockhead",
  "guid": "{48D2B4EE-5668-418C-8CB2-E624F4CBCDBA}",
  "name": "Blockhead",
  "title": "Blockhead",
  "kind": "distortion",
  "description": "Squeezes the picture towards the middle, which makes a head look blocky.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "fish-eye",
  "guid": "{AAD9F53D-60B9-4EDA-92B7-3E0A568DE28A}",
  "name": "Fish Eye",
  "title": "Fish Eye",
  "kind": "distortion",
  "description": "Shows the picture inside a disc on black, through one of three lens curves.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": [
   {
    "id": "large-sphere",
    "name": "Large sphere",
    "description": "Whether the disc spans the longer side of the picture instead of the shorter side.",
    "type": "boolean",
    "minimum": 0,
    "maximum": 1,
    "start": false,
    "choices": []
   },
   {
    "id": "effect-type",
    "name": "Effect type",
    "description": "Lens curve.",
    "type": "choice",
    "minimum": 1,
    "maximum": 3,
    "start": "sphere",
    "choices": [
     {
      "value": 1,
      "id": "sphere",
      "description": "a glass sphere"
     },
     {
      "value": 2,
      "id": "cosine",
      "description": "a softer lens"
     },
     {
      "value": 3,
      "id": "arc-cosine",
      "description": "a lens that turns the picture inside out"
     }
    ]
   }
  ]
 },
 {
  "id": "polarize",
  "guid": "{84DF0F59-4E9F-49AA-8DA0-C46E23D07128}",
  "name": "Polarize",
  "title": "Polarize",
  "kind": "tone",
  "description": "Inverts the picture into a photographic negative.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "comic-book",
  "guid": "{7EA36DF8-6AC3-40AD-A4F3-9B240E651079}",
  "name": "Comic Book",
  "title": "Comic Book",
  "kind": "drawing",
  "description": "Reduces the picture to the eight saturated colours of cheap printing.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "time-distortion",
  "guid": "{4CD53514-D1F8-41FD-BE48-24EF98AD69D3}",
  "name": "Time Distortion",
  "title": "Time Distortion",
  "kind": "time",
  "description": "Lets the past show where the scene changes: a moving body smears into its past positions.",
  "variant": null,
  "hasMemory": true,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "x-ray",
  "guid": "{3FCD24E0-4787-4D3C-9483-2A689BD61654}",
  "name": "X-Ray",
  "title": "X-Ray",
  "kind": "tone",
  "description": "Turns the picture into a bluish-green radiograph: a darkened, slightly blurred negative.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "picture-me",
  "guid": "{E9CC3E96-DFE8-4B32-A477-13D8968339F2}",
  "name": "Picture Me",
  "title": "Picture Me",
  "kind": "faces",
  "description": "Sends snapshots of the tracked face to a column of thumbnails at the right edge.",
  "variant": null,
  "hasMemory": true,
  "moves": true,
  "usesChance": false,
  "usesTime": false,
  "dataFile": "haar.txt",
  "properties": [
   {
    "id": "speed",
    "name": "Speed",
    "description": "Speed at which a snapshot flies to its place.",
    "type": "integer",
    "minimum": 1,
    "maximum": 5,
    "start": 5,
    "choices": []
   },
   {
    "id": "rotation-speed",
    "name": "Rotation speed",
    "description": "Speed at which a snapshot turns on its way.",
    "type": "integer",
    "minimum": 1,
    "maximum": 5,
    "start": 1,
    "choices": []
   },
   {
    "id": "textures-number",
    "name": "Textures number",
    "description": "Number of thumbnails; limited to as many as fit the height of the frame.",
    "type": "integer",
    "minimum": 0,
    "maximum": 10,
    "start": 0,
    "choices": []
   },
   {
    "id": "picture-size",
    "name": "Picture size",
    "description": "Height of a thumbnail in percent of the frame height; applies from the next snapshot on.",
    "type": "integer",
    "minimum": 10,
    "maximum": 50,
    "start": 32,
    "choices": []
   }
  ]
 },
 {
  "id": "bulge",
  "guid": "{DED4BDD4-E2A0-4542-808E-FC9DC4CBCEA6}",
  "name": "Bulge",
  "title": "Bulge",
  "kind": "distortion",
  "description": "Swells the middle of the picture as if it were pressed out from behind.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "gray-scale",
  "guid": "{CC006219-72F8-4E49-8E12-6E05B59269E9}",
  "name": "Gray Scale",
  "title": "Gray Scale",
  "kind": "tone",
  "description": "Removes the colour.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 },
 {
  "id": "sepia",
  "guid": "{3BF3AE40-0316-41B9-84C5-A8C671212CAC}",
  "name": "Sepia",
  "title": "Sepia",
  "kind": "tone",
  "description": "Tints the picture brown.",
  "variant": null,
  "hasMemory": false,
  "moves": false,
  "usesChance": false,
  "usesTime": false,
  "dataFile": null,
  "properties": []
 }
];

export const presets: readonly PresetInfo[] = [
 {
  "id": "noir",
  "title": "Noir",
  "description": "Black and white, in a bright beam of light from above.",
  "effects": "spot-light-2+gray-scale"
 },
 {
  "id": "old-photograph",
  "title": "Old photograph",
  "description": "Brown tones that darken towards the edges.",
  "effects": "spot-light-0+sepia"
 },
 {
  "id": "silent-film",
  "title": "Silent film",
  "description": "A worn black and white reel with dust, scratches and a shaky gate.",
  "effects": "antiquated-movie:sepia=false"
 },
 {
  "id": "drawn-film",
  "title": "Drawn film",
  "description": "An animated pencil drawing on a worn, yellowed reel.",
  "effects": "sketch-2+antiquated-movie"
 },
 {
  "id": "rainy-night",
  "title": "Rainy night",
  "description": "A light from above, seen through a wet window.",
  "effects": "spot-light-1+rain-drops"
 },
 {
  "id": "pencil",
  "title": "Pencil",
  "description": "A drawing with a soft pencil on white paper.",
  "effects": "sketch-1+gray-scale"
 },
 {
  "id": "ink",
  "title": "Ink",
  "description": "Black hatching with a pen on white paper.",
  "effects": "graphic-pen-2:colored=false"
 },
 {
  "id": "graphic-novel",
  "title": "Graphic novel",
  "description": "Flat colours and bold black outlines.",
  "effects": "chalk-2"
 },
 {
  "id": "pop-art",
  "title": "Pop art",
  "description": "Four screen prints in loud colours.",
  "effects": "chalk-1+four-square"
 },
 {
  "id": "blueprint",
  "title": "Blueprint",
  "description": "White lines on engineer's blue.",
  "effects": "line-art-1:background-color=#0b3d91"
 },
 {
  "id": "blackboard",
  "title": "Blackboard",
  "description": "White chalk lines on a dark board.",
  "effects": "chalk-3+polarize"
 },
 {
  "id": "neon",
  "title": "Neon",
  "description": "Glowing outlines in the dark.",
  "effects": "neonize"
 },
 {
  "id": "paparazzi",
  "title": "Paparazzi",
  "description": "A star in the light, and cameras that flash all around.",
  "effects": "spot-light-1+camera-flashes-2"
 },
 {
  "id": "mosaic",
  "title": "Mosaic",
  "description": "The picture laid out of small tiles.",
  "effects": "tiled-up:tile-size=8"
 },
 {
  "id": "haze",
  "title": "Haze",
  "description": "Thin white clouds that drift through the room.",
  "effects": "clouds:cloud-color=#ffffff,intensity=50,type=patches"
 },
 {
  "id": "dream",
  "title": "Dream",
  "description": "Movements that trail softly, in a warm light.",
  "effects": "motion-blur-0+spot-light-0"
 }
];
