// Date and time as the recorder writes them.
const two = (number: number) => `${number < 10 ? '0' : ''}${number}`;

export const timeOfDay = (date: Date) =>
  [date.getHours(), date.getMinutes(), date.getSeconds()].map(two).join(':');

export function clockText(date: Date): string {
  const day = [date.getFullYear(), two(date.getMonth() + 1), two(date.getDate())];
  return `${day.join('-')} ${timeOfDay(date)}`;
}
