// What a key means. Keys that stand for places (w a s d, digits) go by their place on the keyboard; letters that stand
// for words go by the letter where it is Latin, by the place where the layout has other letters. Caps Lock changes
// nothing.

export interface Key {
  key: string;
  code: string;
}

const places: Record<string, string> = {
  KeyW: 'w',
  KeyA: 'a',
  KeyS: 's',
  KeyD: 'd',
  NumpadAdd: '+',
  NumpadSubtract: '-',
};

const signs = new Set(['+', '=', '-', '?']);

/** The letter, digit or sign that a key is for the page; the name of a key that writes nothing. */
export function meaningOf({ key, code }: Key): string {
  const place = places[code];
  if (place) return place;
  if ([...key].length > 1 || signs.has(key)) return key;
  const digit = /^(?:Digit|Numpad)(\d)$/.exec(code);
  if (digit) return digit[1]!;
  if (/^[a-z]$/i.test(key)) return key.toLowerCase();
  const letter = /^Key([A-Z])$/.exec(code);
  if (letter) return letter[1]!.toLowerCase();
  if (code === 'Equal') return '+';
  if (code === 'Minus') return '-';
  return key;
}
