// What the user chooses for all views.
import { encodings } from '../record/bytes';
import type { Palette } from './colors';
import * as state from './state';

export function EncodingChoice() {
  return (
    <select
      aria-label="Encoding of names"
      title="The code page that the program wrote its names in"
      value={state.encoding.value}
      onChange={({ currentTarget }) => (state.encoding.value = currentTarget.value)}
    >
      {encodings.map(([value, label]) => (
        <option value={value}>{label}</option>
      ))}
    </select>
  );
}

export function PaletteChoice() {
  return (
    <select
      aria-label="Palette"
      title="Colours of the blocks: many hues, or eight that stay apart for eyes that see no red or green"
      value={state.palette.value}
      onChange={({ currentTarget }) => (state.palette.value = currentTarget.value as Palette)}
    >
      <option value="hues">Hues</option>
      <option value="apart">Colour-blind</option>
    </select>
  );
}

export function ThemeChoice() {
  return (
    <select
      aria-label="Colours"
      title="Colours"
      value={state.theme.value}
      onChange={({ currentTarget }) => (state.theme.value = currentTarget.value as typeof state.theme.value)}
    >
      <option value="auto">Auto</option>
      <option value="light">Light</option>
      <option value="dark">Dark</option>
    </select>
  );
}
