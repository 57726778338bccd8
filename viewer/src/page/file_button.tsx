interface Properties {
  id: string;
  label: string;
  hint: string;
  onFile: (file: File) => void;
}

/** A button that lets the user choose a file. */
export function FileButton({ id, label, hint, onFile }: Properties) {
  const inputId = `${id}-file`;
  return (
    <>
      <button id={id} title={hint} onClick={() => document.getElementById(inputId)!.click()}>
        {label}
      </button>
      <input
        id={inputId}
        type="file"
        hidden
        onChange={({ currentTarget }) => {
          const file = currentTarget.files?.[0];
          currentTarget.value = '';
          if (file) onFile(file);
        }}
      />
    </>
  );
}
