interface Properties {
  label: string;
  /** Pixels of what is below. */
  value: number;
  onChange: (value: number) => void;
}

/** As the style sheet has it. */
export const separatorHeight = 5;
const least = 60;
const step = 20;

/** The edge above a panel: dragged, or moved with the arrow keys, it makes the panel higher or lower. */
export function Separator({ label, value, onChange }: Properties) {
  const most = Math.max(least, Math.round(innerHeight * 0.7));
  const change = (height: number) => onChange(Math.round(Math.min(Math.max(height, least), most)));
  const onPointerDown = (event: PointerEvent) => {
    const element = event.currentTarget as HTMLElement;
    element.setPointerCapture(event.pointerId);
    const move = (now: PointerEvent) => change(value + event.clientY - now.clientY);
    element.addEventListener('pointermove', move);
    for (const end of ['pointerup', 'pointercancel'] as const)
      element.addEventListener(end, () => element.removeEventListener('pointermove', move), { once: true });
  };
  return (
    <div
      class="separator"
      role="separator"
      tabIndex={0}
      aria-orientation="horizontal"
      aria-label={label}
      aria-valuenow={value}
      aria-valuemin={least}
      aria-valuemax={most}
      onPointerDown={onPointerDown}
      onKeyDown={(event) => {
        const steps: Record<string, number> = { ArrowUp: step, ArrowDown: -step };
        if (!(event.key in steps)) return;
        change(value + steps[event.key]!);
        event.preventDefault();
      }}
    />
  );
}
