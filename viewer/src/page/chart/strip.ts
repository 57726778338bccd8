// A row of a chart where boxes are narrower than pixels: each pixel has a colour of its own.
import type { Surface } from './draw';

export interface Strip {
  /** Gives a pixel its colour; those left and right of the chart are left out. */
  set(at: number, color: string): void;
  /** Paints the pixels that have a colour, from `top` on, and begins anew without any. */
  paint(top: number, height: number): void;
}

/** As an image: to fill thousands of rectangles takes a canvas many times as long. */
export class ImageStrip implements Strip {
  private readonly image: ImageData;
  private readonly pixels: Uint32Array;
  private readonly line: OffscreenCanvasRenderingContext2D;
  private used = false;

  constructor(
    private readonly context: CanvasRenderingContext2D | OffscreenCanvasRenderingContext2D,
    width: number,
  ) {
    this.image = new ImageData(Math.max(1, Math.ceil(width)), 1);
    this.pixels = new Uint32Array(this.image.data.buffer);
    this.line = new OffscreenCanvas(this.image.width, 1).getContext('2d', { willReadFrequently: true })!;
  }

  set(at: number, color: string): void {
    this.used = true;
    // An index outside is no element of the array, and nothing is set.
    this.pixels[at] = pixelOf(color);
  }

  paint(top: number, height: number): void {
    if (!this.used) return;
    const { width } = this.image;
    this.line.putImageData(this.image, 0, 0);
    this.context.imageSmoothingEnabled = false;
    this.context.drawImage(this.line.canvas, 0, 0, width, 1, 0, top, width, height);
    this.pixels.fill(0);
    this.used = false;
  }
}

/** As rectangles, for a picture of lines. Neighbours of one colour are one rectangle. */
export class RectangleStrip implements Strip {
  private colors: string[] = [];

  constructor(
    private readonly surface: Pick<Surface, 'fillRect' | 'fillStyle'>,
    private readonly width: number,
  ) {}

  set(at: number, color: string): void {
    if (at >= 0 && at < this.width) this.colors[at] = color;
  }

  paint(top: number, height: number): void {
    const { colors, surface } = this;
    for (let from = 0, to = 0; from < colors.length; from = to) {
      for (to = from + 1; to < colors.length && colors[to] === colors[from]; ++to);
      if (!colors[from]) continue;
      surface.fillStyle = colors[from]!;
      surface.fillRect(from, top, to - from, height);
    }
    this.colors = [];
  }
}

const known = new Map<string, number>();

/** The pixel of an image in a colour of six hexadecimal digits: its bytes are red, green, blue and how opaque it is. */
function pixelOf(color: string): number {
  let pixel = known.get(color);
  if (pixel === undefined) {
    const digits = parseInt(color.slice(1), 16);
    const [red, green, blue] = [digits >>> 16, (digits >>> 8) & 255, digits & 255];
    known.set(color, (pixel = ((255 << 24) | (blue << 16) | (green << 8) | red) >>> 0));
  }
  return pixel;
}
