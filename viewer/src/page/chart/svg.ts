// Writes what a chart draws as a picture of lines. It takes the part of a canvas that the charts use.
import type { Surface } from './draw';

const escapes: Record<string, string> = { '&': '&amp;', '<': '&lt;', '>': '&gt;', '"': '&quot;' };

/** Text for XML: no markup in it, and none of the characters that XML forbids. */
export function escapeXml(text: string): string {
  return text
    .replace(/[&<>"]/g, (character) => escapes[character]!)
    .replace(
      /[\x00-\x08\x0b\x0c\x0e-\x1f\ufffe\uffff]|[\ud800-\udbff](?![\udc00-\udfff])|(?<![\ud800-\udbff])[\udc00-\udfff]/g,
      '\ufffd',
    );
}

const round = (value: number) => Math.round(value * 100) / 100;

interface Settings {
  fillStyle: string;
  strokeStyle: string;
  lineWidth: number;
  font: string;
  globalAlpha: number;
  groups: number;
}

export class SvgSurface implements Surface {
  fillStyle = '#000000';
  strokeStyle = '#000000';
  lineWidth = 1;
  font = '';
  globalAlpha = 1;
  textBaseline: CanvasTextBaseline = 'alphabetic';
  private readonly parts: string[] = [];
  private readonly saved: Settings[] = [];
  private path: string[] = [];
  private area: { x: number; y: number; width: number; height: number } | undefined;
  private groups = 0;
  private clips = 0;

  constructor(
    private readonly width: number,
    private readonly height: number,
    private readonly measure: (text: string, font: string) => TextMetrics,
  ) {}

  measureText(text: string): TextMetrics {
    return this.measure(text, this.font);
  }

  fillRect(x: number, y: number, width: number, height: number): void {
    this.parts.push(`<rect ${box(x, y, width, height)} fill="${escapeXml(this.fillStyle)}"${this.alpha()}/>`);
  }

  strokeRect(x: number, y: number, width: number, height: number): void {
    this.parts.push(
      `<rect ${box(x, y, width, height)} fill="none" stroke="${escapeXml(this.strokeStyle)}" stroke-width="${this.lineWidth}"/>`,
    );
  }

  fillText(text: string, x: number, y: number): void {
    this.parts.push(
      `<text x="${round(x)}" y="${round(y)}" dominant-baseline="central" ${fontOf(this.font)} fill="${escapeXml(this.fillStyle)}">${escapeXml(text)}</text>`,
    );
  }

  save(): void {
    const { fillStyle, strokeStyle, lineWidth, font, globalAlpha, groups } = this;
    this.saved.push({ fillStyle, strokeStyle, lineWidth, font, globalAlpha, groups });
  }

  restore(): void {
    const settings = this.saved.pop();
    if (!settings) return;
    const { groups, ...rest } = settings;
    Object.assign(this, rest);
    for (; this.groups > groups; --this.groups) this.parts.push('</g>');
  }

  beginPath(): void {
    this.path = [];
    this.area = undefined;
  }

  rect(x: number, y: number, width: number, height: number): void {
    this.area = { x, y, width, height };
  }

  clip(): void {
    if (!this.area) return;
    const { x, y, width, height } = this.area;
    const id = `clip${++this.clips}`;
    this.parts.push(
      `<clipPath id="${id}"><rect ${box(x, y, width, height)}/></clipPath><g clip-path="url(#${id})">`,
    );
    ++this.groups;
  }

  moveTo(x: number, y: number): void {
    this.path.push(`M${round(x)} ${round(y)}`);
  }

  lineTo(x: number, y: number): void {
    this.path.push(`L${round(x)} ${round(y)}`);
  }

  stroke(): void {
    this.parts.push(
      `<path d="${this.path.join('')}" fill="none" stroke="${escapeXml(this.strokeStyle)}" stroke-width="${this.lineWidth}"/>`,
    );
  }

  toString(): string {
    return (
      `<svg xmlns="http://www.w3.org/2000/svg" width="${this.width}" height="${this.height}" ` +
      `viewBox="0 0 ${this.width} ${this.height}">\n${this.parts.join('\n')}\n</svg>\n`
    );
  }

  private alpha(): string {
    return this.globalAlpha < 1 ? ` opacity="${this.globalAlpha}"` : '';
  }
}

/** A rectangle of negative width or height is the same one from its other side. */
function box(x: number, y: number, width: number, height: number): string {
  const left = Math.min(x, x + width);
  const top = Math.min(y, y + height);
  return `x="${round(left)}" y="${round(top)}" width="${round(Math.abs(width))}" height="${round(Math.abs(height))}"`;
}

/** A font as the canvas names it ("600 12px sans-serif"), as attributes. */
function fontOf(font: string): string {
  const [, weight = 'normal', size = '12', family = 'sans-serif'] =
    /^(?:(\d+) )?(\d+)px (.*)$/.exec(font) ?? [];
  return `font-weight="${weight}" font-size="${size}" font-family="${escapeXml(family)}"`;
}
