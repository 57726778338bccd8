// A name has the same colour in every view and every record.

const hues = [210, 28, 140, 280, 50, 340, 175, 95, 250, 5, 310, 190];

function hash(text: string): number {
  let value = 2166136261;
  for (let i = 0; i < text.length; ++i) value = Math.imul(value ^ text.charCodeAt(i), 16777619) >>> 0;
  return (value ^ (value >>> 15)) >>> 0;
}

export function boxColors(names: readonly string[], dark: boolean): string[] {
  return names.map((name) => {
    const value = hash(name);
    const hue = hues[value % hues.length]! + ((value >>> 8) % 13) - 6;
    const step = (value >>> 16) % 3;
    return dark ? hsl(hue, 0.42, 0.3 + 0.05 * step) : hsl(hue, 0.68, 0.73 + 0.05 * step);
  });
}

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
  boxText: string;
  muted: string;
  line: string;
  accent: string;
  faded: string;
  hatch: string;
}

const light: ChartColors = {
  background: '#ffffff',
  lane: '#f3f5f8',
  text: '#1c2733',
  boxText: '#14202c',
  muted: '#586675',
  line: '#dde3ea',
  accent: '#0b57d0',
  faded: '#e6eaef',
  hatch: 'rgba(255,255,255,0.65)',
};

const dark: ChartColors = {
  background: '#15191f',
  lane: '#1d232b',
  text: '#e3e8ee',
  boxText: '#f2f5f8',
  muted: '#98a5b3',
  line: '#2c343e',
  accent: '#7ab3ff',
  faded: '#262d36',
  hatch: 'rgba(10,14,19,0.5)',
};

export function chartColors(isDark: boolean): ChartColors {
  return isDark ? dark : light;
}
