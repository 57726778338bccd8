/** Copies a text, which needs no permission while the user presses something. */
export function copyText(text: string): void {
  const onCopy = (event: ClipboardEvent) => {
    event.clipboardData?.setData('text/plain', text);
    event.preventDefault();
    event.stopImmediatePropagation();
  };
  document.addEventListener('copy', onCopy, { capture: true, once: true });
  document.execCommand('copy');
  document.removeEventListener('copy', onCopy, { capture: true });
}
