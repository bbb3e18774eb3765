export const sectionWord=(n:string)=>n;export const itemWord=(p:string)=>p.split('/').slice(2,-1).join(' ');export const settingWord=(p:string)=>p.split('/').pop()||'';
