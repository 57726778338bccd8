// A name has the same colour in every view and every record.

const hues = [210, 28, 140, 280, 50, 340, 175, 95, 250, 5, 310, 190];

function hash(text: string): number {
  let value = 2166136261;
  for (let i = 0; i < text.length; ++i) value = Math.imul(value ^ text.charCodeAt(i), 16777619) >>> 0;
  return (value ^ (value >>> 15)) >>> 0;
}

/** How names are told apart: by many hues, or by fewer colours that stay apart for eyes that see no red or green. */
export type Palette = 'hues' | 'apart';

export interface BoxColor {
  fill: string;
  text: string;
}

/** Eight for each ground, apart by lightness and by blue and yellow. */
const apart = {
  light: ['#889966', '#445500', '#333355', '#009999', '#333322', '#004499', '#bb8822', '#4499dd'],
  dark: ['#557700', '#0066cc', '#77dddd', '#557755', '#77dd99', '#556688', '#ddcc55', '#55bbff'],
};

/** Luminances of boxes that stand out against the ground by 3 to 1, and let their text do so by 4.5 to 1. */
const luminances = { light: [0.2, 0.235, 0.27], dark: [0.135, 0.15, 0.165] };

export function boxColors(names: readonly string[], dark: boolean, palette: Palette): BoxColor[] {
  const theme = dark ? 'dark' : 'light';
  const made = new Map<string, BoxColor>();
  const colored = (fill: string): BoxColor => {
    let color = made.get(fill);
    if (!color) made.set(fill, (color = { fill, text: textOn(fill) }));
    return color;
  };
  return names.map((name) => {
    const value = hash(name);
    if (palette === 'apart') return colored(apart[theme][value % 8]!);
    const hue = hues[value % hues.length]! + ((value >>> 8) % 13) - 6;
    return colored(ofLuminance(hue, dark ? 0.45 : 0.6, luminances[theme][(value >>> 16) % 3]!));
  });
}

/** Red and blue, which stay apart for all eyes, in three steps each; grey for what stayed as it was. */
const changes = {
  light: {
    more: ['#e0876f', '#cf5a3e', '#a92f17'],
    less: ['#6d9bd1', '#3f78bd', '#1d549b'],
    same: '#8a939d',
  },
  dark: { more: ['#a5523c', '#c4573a', '#ef7454'], less: ['#43689a', '#4a80c8', '#74a9f0'], same: '#6a737d' },
};

/** The colour of a change: stronger from a tenth and from a half on. Below a fiftieth there is none. */
export function changeColor(before: number, after: number, dark: boolean): BoxColor {
  const { more, less, same } = changes[dark ? 'dark' : 'light'];
  const change = Math.abs(after - before) / Math.max(before, after, Number.MIN_VALUE);
  const fill =
    change < 0.02 ? same : (after > before ? more : less)[change < 0.1 ? 0 : change < 0.5 ? 1 : 2]!;
  return { fill, text: textOn(fill) };
}

const known = new Map<string, string>();

/** The lightness is what gives the luminance. */
function ofLuminance(hue: number, saturation: number, wanted: number): string {
  const key = `${hue} ${saturation} ${wanted}`;
  let color = known.get(key);
  if (color) return color;
  let low = 0;
  let high = 1;
  for (let step = 0; step < 12; ++step) {
    const middle = (low + high) / 2;
    if (luminance(hsl(hue, saturation, middle)) < wanted) low = middle;
    else high = middle;
  }
  known.set(key, (color = hsl(hue, saturation, (low + high) / 2)));
  return color;
}

/** Relative luminance of a colour in hexadecimal digits, 0 to 1. */
export function luminance(color: string): number {
  const [red, green, blue] = [1, 3, 5].map((at) => {
    const value = parseInt(color.slice(at, at + 2), 16) / 255;
    return value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4;
  }) as [number, number, number];
  return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

export function contrast(a: string, b: string): number {
  const [x, y] = [luminance(a), luminance(b)];
  return (Math.max(x, y) + 0.05) / (Math.min(x, y) + 0.05);
}

const textOn = (fill: string) => (contrast(fill, '#ffffff') >= 4.6 ? '#ffffff' : '#05080c');

/** The canvas is quickest with colours in hexadecimal digits. */
function hsl(hue: number, saturation: number, lightness: number): string {
  const reach = saturation * Math.min(lightness, 1 - lightness);
  const channel = (offset: number) => {
    const k = (offset + hue / 30 + 12) % 12;
    const value = lightness - reach * Math.max(-1, Math.min(k - 3, 9 - k, 1));
    return Math.round(value * 255)
      .toString(16)
      .padStart(2, '0');
  };
  return `#${channel(0)}${channel(8)}${channel(4)}`;
}

export interface ChartColors {
  background: string;
  lane: string;
  text: string;
  muted: string;
  line: string;
  accent: string;
  faded: string;
  hatch: string;
  /** Hits on the axis, and notes. */
  mark: string;
  note: string;
}

const light: ChartColors = {
  background: '#ffffff',
  lane: '#f3f5f8',
  text: '#1c2733',
  muted: '#586675',
  line: '#dde3ea',
  accent: '#0b57d0',
  faded: '#e6eaef',
  hatch: 'rgba(255,255,255,0.65)',
  mark: '#c2410c',
  note: '#8a3ffc',
};

const dark: ChartColors = {
  background: '#15191f',
  lane: '#1d232b',
  text: '#e3e8ee',
  muted: '#98a5b3',
  line: '#2c343e',
  accent: '#7ab3ff',
  faded: '#262d36',
  hatch: 'rgba(10,14,19,0.5)',
  mark: '#ff9d5c',
  note: '#be95ff',
};

export function chartColors(isDark: boolean): ChartColors {
  return isDark ? dark : light;
}
