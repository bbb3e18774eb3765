// Hands a text to the browser as a file to be kept.
const kKeepUrlMs = 10000;  // a browser may read a download a little later

export function offer(name: string, text: string, type = 'application/xml') {
  const url = URL.createObjectURL(new Blob([text], {type}));
  const link = document.createElement('a');
  link.href = url;
  link.download = name;
  document.body.appendChild(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(url), kKeepUrlMs);
}
