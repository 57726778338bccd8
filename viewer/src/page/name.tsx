import { inTwo, shortened } from './format';

/** A name that keeps its end where there is no room for all of it. */
export function Name({ text }: { text: string }) {
  const [head, tail] = inTwo(text);
  return (
    <span class="name" title={shortened(text, 2000)}>
      {head && <span class="name-head">{head}</span>}
      <span class="name-tail">
        <bdi>{tail}</bdi>
      </span>
    </span>
  );
}

/** A path of names; the last one, the leaf, stays where there is no room for all. */
export function Path({ names }: { names: readonly string[] }) {
  const above = names.slice(0, -1);
  const leaf = names[names.length - 1] ?? '';
  return (
    <span class="name" title={shortenedPath(names)}>
      {above.length > 0 && (
        <span class="name-head">
          {above
            .slice(-30)
            .map((name) => shortened(name, 60))
            .join(' › ')}
        </span>
      )}
      {above.length > 0 && <span class="name-separator">{' › '}</span>}
      <span class="name-leaf">
        <Name text={leaf} />
      </span>
    </span>
  );
}

/** The path as text of a sensible length: the blocks around the leaf, and the top. */
export function shortenedPath(names: readonly string[], most = 12): string {
  const shown = names.length > most ? [names[0]!, '…', ...names.slice(1 - most)] : names;
  return shown.map((name) => shortened(name, 200)).join(' › ');
}
