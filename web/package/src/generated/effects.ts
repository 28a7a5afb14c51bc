// Written by scripts/generate.mjs from the list of effects.

/** The ids of the effects. */
export type EffectId =
  | 'graphic-pen-1'
  | 'graphic-pen-2'
  | 'graphic-pen-3'
  | 'graphic-pen-4'
  | 'chrome-1'
  | 'chrome-2'
  | 'plaster'
  | 'sketch-1'
  | 'sketch-2'
  | 'sketch-3'
  | 'line-art-1'
  | 'line-art-2'
  | 'tiled-up'
  | 'neonize'
  | 'chalk-1'
  | 'chalk-2'
  | 'chalk-3'
  | 'liquefy-1'
  | 'liquefy-2'
  | 'liquefy-3'
  | 'fire'
  | 'cotton-candy'
  | 'rain'
  | 'four-square'
  | 'twirl-1'
  | 'twirl-2'
  | 'moving-twirl'
  | 'clouds'
  | 'antiquated-movie'
  | 'hallway-vision-1'
  | 'hallway-vision-2'
  | 'rain-drops'
  | 'camera-flashes-1'
  | 'camera-flashes-5'
  | 'camera-flashes-4'
  | 'camera-flashes-8'
  | 'camera-flashes-3'
  | 'camera-flashes-7'
  | 'camera-flashes-2'
  | 'camera-flashes-6'
  | 'camera-flashes-9'
  | 'camera-flashes-10'
  | 'camera-flashes-11'
  | 'camera-flashes-12'
  | 'motion-blur-0'
  | 'motion-detector'
  | 'motion-blur-1'
  | 'colored-pencil'
  | 'spot-light-0'
  | 'spot-light-1'
  | 'spot-light-2'
  | 'quark'
  | 'logo-animation'
  | 'blockhead'
  | 'fish-eye'
  | 'polarize'
  | 'comic-book'
  | 'time-distortion'
  | 'x-ray'
  | 'picture-me'
  | 'bulge'
  | 'gray-scale'
  | 'sepia';

/** The ids of the presets. */
export type PresetId =
  | 'noir'
  | 'old-photograph'
  | 'silent-film'
  | 'drawn-film'
  | 'rainy-night'
  | 'pencil'
  | 'ink'
  | 'graphic-novel'
  | 'pop-art'
  | 'blueprint'
  | 'blackboard'
  | 'neon'
  | 'paparazzi'
  | 'mosaic'
  | 'haze'
  | 'dream';

/** The properties of an effect that has none. */
export type NoProperties = Record<string, never>;

/** The properties of each effect. */
export interface EffectProperties {
  /** Graphic Pen 1: Draws the picture in dark pen strokes that all lean the same way, denser where it is darker. */
  'graphic-pen-1': {
    /**
     * Whether the colours of the scene show through the strokes.
     * Default: `true`.
     */
    'colored'?: boolean;
  };
  /** Graphic Pen 2: Draws the picture in pen strokes, with lighter flat areas and dark edges. */
  'graphic-pen-2': {
    /**
     * Whether the colours of the scene show through the strokes.
     * Default: `true`.
     */
    'colored'?: boolean;
  };
  /** Graphic Pen 3: Draws the picture in soft pen strokes, with lighter flat areas. */
  'graphic-pen-3': {
    /**
     * Whether the colours of the scene show through the strokes.
     * Default: `true`.
     */
    'colored'?: boolean;
  };
  /** Graphic Pen 4: Draws the picture in pen strokes that crawl along their own direction, with lighter flat areas. */
  'graphic-pen-4': {
    /**
     * Whether the colours of the scene show through the strokes.
     * Default: `true`.
     */
    'colored'?: boolean;
  };
  /** Chrome 1: Turns the scene into dark polished metal: soft gradients become bright and dark bands. */
  'chrome-1': NoProperties;
  /** Chrome 2: Turns the scene into bright polished metal: soft gradients become bright and dark bands. */
  'chrome-2': NoProperties;
  /** Plaster: Casts the scene in plaster: dark masses and bright fields, with raised borders lit from above. */
  'plaster': NoProperties;
  /** Sketch 1: Draws the picture in short crossing pencil strokes. */
  'sketch-1': NoProperties;
  /** Sketch 2: Draws the picture in short crossing pencil strokes, with inked edges. */
  'sketch-2': NoProperties;
  /** Sketch 3: Draws the picture in short crossing pencil strokes, softened, with lighter flat areas. */
  'sketch-3': NoProperties;
  /** Line Art 1: Draws the edges of the scene as bright lines on one flat colour. */
  'line-art-1': {
    /**
     * Background colour, which also tints the lines.
     * `"#rrggbb"`.
     * Default: `"#0080ff"`.
     */
    'background-color'?: string;
  };
  /** Line Art 2: Draws the edges of the scene as bright lines on one flat colour; the same as line-art-1. */
  'line-art-2': {
    /**
     * Background colour, which also tints the lines.
     * `"#rrggbb"`.
     * Default: `"#0080ff"`.
     */
    'background-color'?: string;
  };
  /** Tiled Up: Divides the picture into square tiles with uneven grout, lit as a relief. */
  'tiled-up': {
    /**
     * Side length of a tile in pixels.
     * 4 to 32.
     * Default: `5`.
     */
    'tile-size'?: number;
  };
  /** Neonize: Draws the edges of the scene as glowing coloured lines on black. */
  'neonize': NoProperties;
  /** Chalk 1: Reduces the picture to eight flat chalk tones over blurred colours. */
  'chalk-1': {
    /**
     * Whether edges are inked; chalk-3 always draws its outlines.
     * `plain` (0): flat tones only; `inked` (1): near-black edges.
     * Default: `"plain"`.
     */
    'draw-edges'?: boolean | 'plain' | 'inked';
  };
  /** Chalk 2: Reduces the picture to eight flat chalk tones over blurred colours, with near-black edges. */
  'chalk-2': {
    /**
     * Whether edges are inked; chalk-3 always draws its outlines.
     * `plain` (0): flat tones only; `inked` (1): near-black edges.
     * Default: `"inked"`.
     */
    'draw-edges'?: boolean | 'plain' | 'inked';
  };
  /** Chalk 3: Draws the outlines of the scene in grey chalk, without colour. */
  'chalk-3': {
    /**
     * Whether edges are inked; chalk-3 always draws its outlines.
     * `plain` (0): flat tones only; `inked` (1): near-black edges.
     * Default: `"plain"`.
     */
    'draw-edges'?: boolean | 'plain' | 'inked';
  };
  /** Liquefy 1: Shows the picture through moving water with crossed sine waves. */
  'liquefy-1': {
    /**
     * Speed of the water.
     * 1 to 3.
     * Default: `1`.
     */
    'change-speed'?: number;
    /**
     * Strength of the distortion in sixteenths; 16 is normal strength.
     * 1 to 24.
     * Default: `16`.
     */
    'intensity'?: number;
  };
  /** Liquefy 2: Shows the picture through moving water with random blobs that rise and fall. */
  'liquefy-2': {
    /**
     * Speed of the water.
     * 1 to 3.
     * Default: `1`.
     */
    'change-speed'?: number;
    /**
     * Strength of the distortion in sixteenths; 16 is normal strength.
     * 1 to 24.
     * Default: `16`.
     */
    'intensity'?: number;
  };
  /** Liquefy 3: Shows the picture through moving water with scrolling noise. */
  'liquefy-3': {
    /**
     * Speed of the water.
     * 1 to 3.
     * Default: `1`.
     */
    'change-speed'?: number;
    /**
     * Strength of the distortion in sixteenths; 16 is normal strength.
     * 1 to 24.
     * Default: `16`.
     */
    'intensity'?: number;
  };
  /** Fire: Makes the picture glow like a false-colour heat image, from white through red and blue back to white. */
  'fire': NoProperties;
  /** Cotton Candy: Turns the picture into soft pastel false colours: pink, violet and cyan. */
  'cotton-candy': NoProperties;
  /** Rain: Shows the picture under a pond in the rain: rings spread from drops at random places. */
  'rain': {
    /**
     * Number of frames from one drop to the next.
     * 1 to 20.
     * Default: `1`.
     */
    'drop-period'?: number;
    /**
     * Diameter of a drop in pixels.
     * 2 to 16.
     * Default: `3`.
     */
    'drop-size'?: number;
  };
  /** Four Square: Repeats the scene four times as a high-contrast screen print, each quadrant in its own colours. */
  'four-square': NoProperties;
  /** Twirl 1: Twists a disc in the middle of the picture, most at its centre. */
  'twirl-1': NoProperties;
  /** Twirl 2: Twists the whole picture round its centre, most at the centre. */
  'twirl-2': NoProperties;
  /** Moving Twirl: Twists a disc in the middle of the picture back and forth. */
  'moving-twirl': NoProperties;
  /** Clouds: Draws drifting clouds of one colour over the picture. */
  'clouds': {
    /**
     * Colour of the clouds.
     * `"#rrggbb"`.
     * Default: `"#c0c0c0"`.
     */
    'cloud-color'?: string;
    /**
     * Opacity of the clouds in percent.
     * 1 to 100.
     * Default: `90`.
     */
    'intensity'?: number;
    /**
     * Shape of the clouds.
     * `veil` (1): an even veil; `patches` (2): patches with clear sky between them; `hanging` (3): clouds that hang from the upper edge.
     * Default: `"veil"`.
     */
    'type'?: 'veil' | 'patches' | 'hanging' | number;
  };
  /** Antiquated Movie: Ages the picture like an old film, with hairs, dust, scratches, grain and a jittering gate. */
  'antiquated-movie': {
    /**
     * Whether the film has a sepia tint.
     * Default: `true`.
     */
    'sepia'?: boolean;
    /**
     * Whether the corners are darkened.
     * Default: `true`.
     */
    'vignetting'?: boolean;
  };
  /** Hallway Vision 1: Bends the picture as if seen down a corridor, with smooth sampling. */
  'hallway-vision-1': NoProperties;
  /** Hallway Vision 2: Bends the picture as if seen down a corridor, with nearest-pixel sampling. */
  'hallway-vision-2': NoProperties;
  /** Rain Drops: Shows the picture through a wet window pane: drops sit on the glass, grow heavy and run down. */
  'rain-drops': {
    /**
     * Intensity of the rain.
     * 1 to 10.
     * Default: `5`.
     */
    'rain-rate'?: number;
  };
  /** Camera Flashes 1: Adds plain blue glows that flash, drift and light up again elsewhere. */
  'camera-flashes-1': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"glows"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 5: Adds stars with changing spikes that flash, drift and light up again elsewhere. */
  'camera-flashes-5': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"changing-stars"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 4: Adds regular stars that flash, drift and light up again elsewhere. */
  'camera-flashes-4': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"regular-stars"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 8: Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7. */
  'camera-flashes-8': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"8"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 3: Adds ragged stars that flash, drift and light up again elsewhere. */
  'camera-flashes-3': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"ragged-stars"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 7: Adds flares of random kinds that flash, drift and light up again elsewhere. */
  'camera-flashes-7': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"random"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 2: Adds sharp points with wide halos that flash, drift and light up again elsewhere. */
  'camera-flashes-2': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"glares"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 6: Adds ragged stars in rings that flash, drift and light up again elsewhere. */
  'camera-flashes-6': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"ringed-stars"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 9: Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7. */
  'camera-flashes-9': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"9"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 10: Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7. */
  'camera-flashes-10': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"10"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 11: Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7. */
  'camera-flashes-11': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"11"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Camera Flashes 12: Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7. */
  'camera-flashes-12': {
    /**
     * Kind of flare.
     * `glows` (1): plain round glows; `glares` (2): sharp points with wide halos; `ragged-stars` (3): stars with spikes of random length; `regular-stars` (4): stars with 3 to 7 even spikes; `changing-stars` (5): stars that change their spikes; `ringed-stars` (6): ragged stars in rings; `random` (7): a random kind for each flare.
     * Default: `"12"`.
     */
    'mode'?: 'glows' | 'glares' | 'ragged-stars' | 'regular-stars' | 'changing-stars' | 'ringed-stars' | 'random' | number;
    /**
     * Whether the flares drift.
     * Default: `true`.
     */
    'moving'?: boolean;
    /**
     * Whether the flares tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorizing'?: boolean;
    /**
     * Whether the flares pulse and light up again elsewhere.
     * Default: `true`.
     */
    'animation'?: boolean;
  };
  /** Motion Blur - Ghost 0: Leaves bright trails: blends each frame with the three output frames before it. */
  'motion-blur-0': NoProperties;
  /** Motion Detector: Shows only what moves, as a glow of one colour that fades in real time. */
  'motion-detector': {
    /**
     * Length of the trails that motion leaves.
     * 1 to 100.
     * Default: `50`.
     */
    'blur-delay'?: number;
    /**
     * Colour of the glow.
     * `"#rrggbb"`.
     * Default: `"#ff0000"`.
     */
    'blur-color'?: string;
  };
  /** Motion Blur - Ghost 1: Leaves ghosts: blends each frame with the three output frames before it. */
  'motion-blur-1': NoProperties;
  /** Colored Pencil: Draws dark contour lines on pale paper, with the scene's colours as a wash behind them. */
  'colored-pencil': NoProperties;
  /** Spot Light 0: Darkens the picture except under a round light in the middle. */
  'spot-light-0': NoProperties;
  /** Spot Light 1: Darkens the picture except under a beam of light from above. */
  'spot-light-1': NoProperties;
  /** Spot Light 2: Darkens the picture except under a brighter beam from above with a steep edge. */
  'spot-light-2': NoProperties;
  /** Quark: Takes each pixel from a random one of the last 16 frames, so that motion dissolves into speckle. */
  'quark': NoProperties;
  /** Logo Animation: Fades copies of a small logo, a text or a bitmap, in and out at random places. */
  'logo-animation': {
    /**
     * Number of copies.
     * 1 to 40.
     * Default: `10`.
     */
    'objects-number'?: number;
    /**
     * Content of the copies.
     * `text` (1): a short text; `picture` (2): the bitmap in the data file logo3.bmp, or an error message.
     * Default: `"text"`.
     */
    'type'?: 'text' | 'picture' | number;
    /**
     * Whether the copies drift.
     * Default: `false`.
     */
    'moving-animation'?: boolean;
    /**
     * Whether the copies tint the picture as well as brighten it.
     * Default: `true`.
     */
    'colorize'?: boolean;
    /**
     * Whether each copy gets a random colour instead of one of the set colours.
     * Default: `true`.
     */
    'random-colors'?: boolean;
    /**
     * One of the colours of the copies when random colours are off; black means unset.
     * `"#rrggbb"`.
     * Default: `"#000000"`.
     */
    'color-1'?: string;
    /**
     * One of the colours of the copies when random colours are off; black means unset.
     * `"#rrggbb"`.
     * Default: `"#000000"`.
     */
    'color-2'?: string;
    /**
     * One of the colours of the copies when random colours are off; black means unset.
     * `"#rrggbb"`.
     * Default: `"#000000"`.
     */
    'color-3'?: string;
    /**
     * One of the colours of the copies when random colours are off; black means unset.
     * `"#rrggbb"`.
     * Default: `"#000000"`.
     */
    'color-4'?: string;
    /**
     * One of the colours of the copies when random colours are off; black means unset.
     * `"#rrggbb"`.
     * Default: `"#000000"`.
     */
    'color-5'?: string;
  };
  /** Blockhead: Squeezes the picture towards the middle, which makes a head look blocky. */
  'blockhead': NoProperties;
  /** Fish Eye: Shows the picture inside a disc on black, through one of three lens curves. */
  'fish-eye': {
    /**
     * Whether the disc spans the longer side of the picture instead of the shorter side.
     * Default: `false`.
     */
    'large-sphere'?: boolean;
    /**
     * Lens curve.
     * `sphere` (1): a glass sphere; `cosine` (2): a softer lens; `arc-cosine` (3): a lens that turns the picture inside out.
     * Default: `"sphere"`.
     */
    'effect-type'?: 'sphere' | 'cosine' | 'arc-cosine' | number;
  };
  /** Polarize: Inverts the picture into a photographic negative. */
  'polarize': NoProperties;
  /** Comic Book: Reduces the picture to the eight saturated colours of cheap printing. */
  'comic-book': NoProperties;
  /** Time Distortion: Lets the past show where the scene changes: a moving body smears into its past positions. */
  'time-distortion': NoProperties;
  /** X-Ray: Turns the picture into a bluish-green radiograph: a darkened, slightly blurred negative. */
  'x-ray': NoProperties;
  /** Picture Me: Sends snapshots of the tracked face to a column of thumbnails at the right edge. */
  'picture-me': {
    /**
     * Speed at which a snapshot flies to its place.
     * 1 to 5.
     * Default: `5`.
     */
    'speed'?: number;
    /**
     * Speed at which a snapshot turns on its way.
     * 1 to 5.
     * Default: `1`.
     */
    'rotation-speed'?: number;
    /**
     * Number of thumbnails; limited to as many as fit the height of the frame.
     * 0 to 10.
     * Default: `0`.
     */
    'textures-number'?: number;
    /**
     * Height of a thumbnail in percent of the frame height; applies from the next snapshot on.
     * 10 to 50.
     * Default: `32`.
     */
    'picture-size'?: number;
  };
  /** Bulge: Swells the middle of the picture as if it were pressed out from behind. */
  'bulge': NoProperties;
  /** Gray Scale: Removes the colour. */
  'gray-scale': NoProperties;
  /** Sepia: Tints the picture brown. */
  'sepia': NoProperties;
}
