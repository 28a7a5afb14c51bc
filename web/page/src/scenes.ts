// The built-in moving scenes.

/** Draws a moment; seconds count from the start. */
export type Scene = (context: CanvasRenderingContext2D, width: number, height: number, seconds: number) => void;

const kTurn = 2 * Math.PI;
const wave = (seconds: number, period: number, phase = 0) => Math.sin(kTurn * (seconds / period + phase));

/** A picture as a hand-held camera sees it. It fills the frame. */
export function handHeld(picture: HTMLImageElement, still: boolean): Scene {
  return (context, width, height, now) => {
    const seconds = still ? 0 : now;
    const scale =
      Math.max(width / picture.naturalWidth, height / picture.naturalHeight) * (1.1 + 0.05 * wave(seconds, 13));
    const w = picture.naturalWidth * scale,
      h = picture.naturalHeight * scale;
    const x = (width - w) * (0.5 + 0.3 * wave(seconds, 7) + 0.06 * wave(seconds, 1.9, 0.3));
    const y = (height - h) * (0.12 + 0.06 * wave(seconds, 5, 0.1) + 0.03 * wave(seconds, 1.3));
    context.imageSmoothingQuality = 'high';
    context.drawImage(picture, x, y, w, h);
  };
}

interface Balloon {
  x: number;
  y: number;
  size: number;
  speed: number;
  stripes: readonly string[];
}

const kBalloons: readonly Balloon[] = [
  { x: 0.18, y: 0.3, size: 0.085, speed: 0.01, stripes: ['#f4d35e', '#ee964b', '#f95738'] },
  { x: 0.86, y: 0.2, size: 0.06, speed: 0.007, stripes: ['#e0fbfc', '#3d9ca8', '#264b6b'] },
  { x: 0.66, y: 0.52, size: 0.045, speed: 0.014, stripes: ['#f7b2bd', '#b23a48', '#fcb9b2'] },
  { x: 0.43, y: 0.37, size: 0.15, speed: 0.018, stripes: ['#d62839', '#fff3e0', '#f77f00', '#fff3e0'] },
];

interface Ridge {
  top: number;
  rough: number;
  color: string;
  speed: number;
}

const kRidges: readonly Ridge[] = [
  { top: 0.6, rough: 0.1, color: '#9a7aa0', speed: 0.004 },
  { top: 0.7, rough: 0.08, color: '#6b5b95', speed: 0.009 },
  { top: 0.8, rough: 0.06, color: '#3f4a7a', speed: 0.018 },
  { top: 0.9, rough: 0.05, color: '#20304f', speed: 0.036 },
];

/** Hot-air balloons over hills in the evening, with birds. */
export function balloons(still: boolean): Scene {
  let sky: OffscreenCanvas | undefined;
  return (context, width, height, now) => {
    const seconds = still ? 4 : now;
    sky ??= drawSky(width, height);
    context.drawImage(sky, 0, 0);
    drawClouds(context, width, height, seconds);
    drawRidge(context, width, height, seconds, kRidges[0]!);
    for (const balloon of kBalloons) drawBalloon(context, width, height, seconds, balloon);
    for (const ridge of kRidges.slice(1)) drawRidge(context, width, height, seconds, ridge);
    drawBirds(context, width, height, seconds);
  };
}

/** What does not move, drawn once. */
function drawSky(width: number, height: number): OffscreenCanvas {
  const canvas = new OffscreenCanvas(width, height);
  const context = canvas.getContext('2d', { alpha: false })!;
  const sky = context.createLinearGradient(0, 0, 0, height);
  sky.addColorStop(0, '#27427c');
  sky.addColorStop(0.4, '#b0679b');
  sky.addColorStop(0.65, '#ffb37b');
  sky.addColorStop(1, '#ffe1a8');
  context.fillStyle = sky;
  context.fillRect(0, 0, width, height);
  const sunX = 0.74 * width,
    sunY = 0.56 * height;
  const sun = context.createRadialGradient(sunX, sunY, 0, sunX, sunY, 0.4 * height);
  sun.addColorStop(0, '#fff8d6');
  sun.addColorStop(0.18, '#fff0b8');
  sun.addColorStop(0.2, '#ffdf9a99');
  sun.addColorStop(1, '#ffdf9a00');
  context.fillStyle = sun;
  context.fillRect(0, 0, width, height);
  return canvas;
}

function drawClouds(context: CanvasRenderingContext2D, width: number, height: number, seconds: number): void {
  context.fillStyle = '#ffffff55';
  for (let i = 0; i < 5; ++i) {
    const x = (((i * 0.27 + seconds * 0.006 * (1 + (i % 3))) % 1.4) - 0.2) * width;
    const y = (0.12 + 0.09 * i) * height;
    for (let puff = 0; puff < 4; ++puff) {
      context.beginPath();
      context.ellipse(
        x + (puff - 1.5) * 0.045 * width,
        y + (puff % 2) * 0.008 * height,
        0.05 * width,
        0.014 * height,
        0,
        0,
        kTurn,
      );
      context.fill();
    }
  }
}

function drawRidge(
  context: CanvasRenderingContext2D,
  width: number,
  height: number,
  seconds: number,
  ridge: Ridge,
): void {
  context.fillStyle = ridge.color;
  context.beginPath();
  context.moveTo(0, height);
  for (let x = 0; x <= width; x += 8) {
    const at = x / width + seconds * ridge.speed + ridge.top * 7;
    const up = Math.sin(at * 5) * 0.6 + Math.sin(at * 11 + 1) * 0.3 + Math.sin(at * 29 + 2) * 0.1;
    context.lineTo(x, (ridge.top - up * ridge.rough) * height);
  }
  context.lineTo(width, height);
  context.fill();
}

function drawBalloon(
  context: CanvasRenderingContext2D,
  width: number,
  height: number,
  seconds: number,
  { x, y, size, speed, stripes }: Balloon,
): void {
  const radius = size * height * 1.2;
  const span = width + 4 * radius;
  context.save();
  context.translate(
    ((x * width + 2 * radius + seconds * speed * width) % span) - 2 * radius,
    y * height + wave(seconds, 6 + 40 * speed, x) * 0.03 * height,
  );
  context.rotate(0.04 * wave(seconds, 5, y));
  const envelope = new Path2D();
  envelope.arc(0, 0, radius, Math.PI * 0.88, Math.PI * 0.12);
  envelope.bezierCurveTo(radius * 0.75, radius * 0.9, radius * 0.3, radius * 1.1, radius * 0.22, radius * 1.45);
  envelope.lineTo(-radius * 0.22, radius * 1.45);
  envelope.bezierCurveTo(-radius * 0.3, radius * 1.1, -radius * 0.75, radius * 0.9, -radius * 0.95, radius * 0.37);
  context.save();
  context.clip(envelope);
  const gores = 9;
  for (let gore = 0; gore < gores; ++gore) {
    const left = -Math.cos((Math.PI * gore) / gores) * radius,
      right = -Math.cos((Math.PI * (gore + 1)) / gores) * radius;
    context.fillStyle = stripes[gore % stripes.length]!;
    context.fillRect(left, -radius, right - left + 1, radius * 2.6);
  }
  const shade = context.createRadialGradient(radius * 0.35, -radius * 0.2, radius * 0.2, 0, 0, radius * 1.5);
  shade.addColorStop(0, '#ffffff40');
  shade.addColorStop(0.5, '#ffffff00');
  shade.addColorStop(1, '#20103080');
  context.fillStyle = shade;
  context.fillRect(-radius, -radius, radius * 2, radius * 2.6);
  context.restore();
  context.strokeStyle = '#3b2a2a';
  context.lineWidth = Math.max(1, radius * 0.025);
  context.beginPath();
  for (const side of [-1, 1]) {
    context.moveTo(side * radius * 0.2, radius * 1.45);
    context.lineTo(side * radius * 0.15, radius * 1.75);
  }
  context.stroke();
  context.fillStyle = '#7a4a2b';
  context.fillRect(-radius * 0.17, radius * 1.75, radius * 0.34, radius * 0.26);
  context.restore();
}

function drawBirds(context: CanvasRenderingContext2D, width: number, height: number, seconds: number): void {
  context.strokeStyle = '#1d2438';
  context.lineWidth = height / 220;
  context.lineCap = 'round';
  for (let i = 0; i < 7; ++i) {
    const x = (1.1 - ((seconds * 0.05 + i * 0.035) % 1.3)) * width;
    const y = (0.2 + 0.02 * Math.abs(i - 3) + 0.02 * wave(seconds, 7, i / 9)) * height;
    const span = 0.016 * width,
      flap = wave(seconds, 0.8, i * 0.17) * 0.012 * height;
    context.beginPath();
    context.moveTo(x - span, y - flap);
    context.quadraticCurveTo(x - span / 2, y - 0.01 * height, x, y);
    context.quadraticCurveTo(x + span / 2, y - 0.01 * height, x + span, y - flap);
    context.stroke();
  }
}
